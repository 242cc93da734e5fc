// Places and rectangles of an image.
#pragma once

#include <cstdint>

#include "frame/arithmetic.h"

namespace vorlanepic::frame {

// A pixel position. A 1-bit walk may put its border point one run past the image: x up to the
// width.
struct PixelPoint {
  int32_t x;
  int32_t y;

  bool operator==(const PixelPoint&) const = default;
};

// Columns left..right and rows top..bottom, in pixels, all inclusive. Nothing is covered where the
// last one lies before the first.
struct PixelRect {
  int32_t left;
  int32_t right;
  int32_t top;
  int32_t bottom;

  // Columns and rows covered; those of absurd rectangles wrap.
  int32_t width() const { return WrapAdd(WrapSub(right, left), 1); }
  int32_t height() const { return WrapAdd(WrapSub(bottom, top), 1); }

  bool operator==(const PixelRect&) const = default;
};

}  // namespace vorlanepic::frame
