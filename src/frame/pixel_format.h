// How the depths that pages come in are stored.
#pragma once

#include <cstdint>

namespace vorlanepic::frame {

// The depths that the stages take, in bits per pixel: black and white, grey, and colour as blue,
// green and red bytes.
constexpr bool IsPageDepth(int32_t bitsPerPixel) {
  return bitsPerPixel == 1 || bitsPerPixel == 8 || bitsPerPixel == 24;
}

// Whether pixel x of a 1-bit row is set; the first pixel is the highest bit of its byte.
constexpr bool IsBitSet(const uint8_t* row, int64_t x) {
  return (row[x >> 3] & (0x80 >> (x & 7))) != 0;
}

// Bytes of a row padded to 4 bytes; at most 2^33, so 64 bits hold every product with a height.
constexpr int64_t PaddedRowBytes(int32_t width, int32_t bitsPerPixel) {
  return (int64_t{width} * bitsPerPixel + 31) / 32 * 4;
}

}  // namespace vorlanepic::frame
