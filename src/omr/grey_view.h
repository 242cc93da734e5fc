// A host's grey image, as the block and mark-sheet functions take it.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vorlanepic::omr {

// One byte per pixel, 0 is black, top row first, rows without padding. The host owns the pixels.
struct GreyView {
  const uint8_t* pixels;  // the top row
  int32_t height;
  int32_t width;
  // From a row to the one below; negative where the bottom row comes first in memory.
  ptrdiff_t lineBytes = width;

  const uint8_t* Row(int32_t y) const { return pixels + y * lineBytes; }

  // Bytes from a pixel to the end of the image in memory, which ends with the last row's pixels.
  size_t BytesFrom(int32_t x, int32_t y) const {
    const ptrdiff_t behind =
        lineBytes < 0 ? y * -lineBytes : (height - ptrdiff_t{y} - 1) * lineBytes;
    return static_cast<size_t>(behind + width - x);
  }
};

}  // namespace vorlanepic::omr
