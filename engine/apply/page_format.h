// How the formats of pages store their pixels.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "vorlane/vorlane.h"

namespace vorlane::apply {

struct PageFormat {
  int32_t bitsPerPixel;  // 1, 8, 24 or 32; 0: there is no such format
  bool isDarkSet;        // 1 bit: whether a set bit is dark
  bool isRedFirst;       // 24 and 32 bits
};

// What a VORLANE_ format code stands for.
PageFormat FormatOf(int32_t code);

// Bytes of `width` pixels, without padding; `width` is at least 0.
size_t RowBytes(int32_t bitsPerPixel, int32_t width);

// The bytes of a pixel of the colour red, green, blue; 1 bit: eight pixels.
std::array<uint8_t, 3> FillBytes(const PageFormat& format, const uint8_t* colour);

// Whether a page can be worked on: VORLANE_OK, VORLANE_BAD_IMAGE or VORLANE_TOO_LARGE. The pixels
// are not looked at.
vorlane_status CheckImage(const vorlane_image& page);

// Whether rows of `width` pixels can lie `stride` bytes apart.
bool IsStrideUsable(ptrdiff_t stride, int32_t bitsPerPixel, int32_t width, int32_t height);

}  // namespace vorlane::apply
