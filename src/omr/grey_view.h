// A host's grey image, as the block and mark-sheet functions take it.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vorlanepic {

// One byte per pixel, 0 is black, top row first, rows without padding. The host owns the pixels.
struct GreyView {
  const uint8_t* pixels;
  int32_t height;
  int32_t width;

  const uint8_t* Row(int32_t y) const {
    return pixels + static_cast<size_t>(y) * static_cast<size_t>(width);
  }

  // Bytes from a pixel to the end of the image.
  size_t BytesFrom(int32_t x, int32_t y) const {
    return static_cast<size_t>(height - y) * static_cast<size_t>(width) - static_cast<size_t>(x);
  }
};

}  // namespace vorlanepic
