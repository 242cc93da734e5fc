// The region of a source image that a rotation may sample.
#pragma once

#include <cstdint>

#include "frame/scratch.h"

namespace vorlanepic::rotate {

// Columns left..right of one source row, in pixels, both inclusive.
struct RowSpan {
  int32_t left;
  int32_t right;
};

// Rows top..bottom of a source image, both inclusive. `spans` is indexed by the absolute source
// row, so the first entry read is spans[top]. Holds for a region handed to RotateImage: 0 <= left
// and right < source width in every entry of top..bottom. left > right is an empty row.
struct RowSpans {
  int32_t top = 0;
  int32_t bottom = 0;
  frame::ScratchArray<RowSpan> spans;
};

}  // namespace vorlanepic::rotate
