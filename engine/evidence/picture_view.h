// The picture that a caller hands in.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vorlane::evidence {

// A picture that the caller owns; nothing of it is written.
//
//   pixels         the first byte of the top row
//   strideBytes    from one row to the next; negative where the top row is the last in memory
//   width, height  at least 1
//   depth          bits of a pixel. 1: most significant bit first, a set bit is light; 8: grey, 0
//                  is black; 24 and 32: three colours of a byte each, red and blue in either order,
//                  and in the fourth byte of 32 whatever there is
struct PictureView {
  const uint8_t* pixels = nullptr;
  ptrdiff_t strideBytes = 0;
  int32_t width = 0;
  int32_t height = 0;
  int32_t depth = 8;

  const uint8_t* Row(int32_t y) const { return pixels + ptrdiff_t{y} * strideBytes; }
};

}  // namespace vorlane::evidence
