// Row tables of images whose pixels belong to somebody else.
#pragma once

#include <cstddef>
#include <cstdint>

#include "vorlanepic/imgbuf.h"

namespace vorlanepic::frame {

// Lets `image` begin at its `pixels`, with `rows`, which has room for its height, as its row table.
inline void LayRows(uint8_t** rows, ImageRec* image) {
  for (int32_t y = 0; y < image->height; ++y) {
    rows[y] = image->pixels + ptrdiff_t{y} * image->lineBytes;
  }
  image->rows = rows;
}

}  // namespace vorlanepic::frame
