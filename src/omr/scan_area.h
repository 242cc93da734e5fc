// Which columns and rows of an image a search rectangle covers.
#pragma once

#include <cstdint>

#include "frame/geometry.h"

namespace vorlanepic::omr {

// A search rectangle as its caller gave it: columns x .. x + w and rows y .. y + h, where w and h
// may be negative. 64 bits hold every sum of two 32-bit corners or extents.
struct SearchRect {
  int64_t x;
  int64_t y;
  int64_t w;
  int64_t h;
};

// Cuts `rect` to a width x height image. An origin left of or above the image moves to its edge and
// the extent keeps its length. False when the origin lies right of or below the image.
bool ClipToImage(const SearchRect& rect, int32_t width, int32_t height, frame::PixelRect* area);

}  // namespace vorlanepic::omr
