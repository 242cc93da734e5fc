// How far a block reaches in each column and row of its bounding box.
#pragma once

#include <cstdint>
#include <span>

#include "frame/scratch.h"
#include "vorlanepic/vorlanepic.h"

namespace vorlanepic::omr {

// The first and last pixel of a block in one line across its bounding box, counted from the box's
// edge. A line without a pixel has first > last, and last = -1.
struct LineExtent {
  int32_t first;
  int32_t last;
};

class BlockOutline {
 public:
  // Takes the outline of `block` from its points; one whose 16-bit coordinates lie outside the box
  // is left out. False when there is no memory.
  [[nodiscard]] bool Trace(const BlockRec& block);

  std::span<const LineExtent> columns() const {
    return columns_.span();
  }                                                                  // rows within each column
  std::span<const LineExtent> rows() const { return rows_.span(); }  // columns within each row

 private:
  frame::ScratchArray<LineExtent> columns_;
  frame::ScratchArray<LineExtent> rows_;
};

}  // namespace vorlanepic::omr
