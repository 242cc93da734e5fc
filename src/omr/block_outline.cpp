#include "omr/block_outline.h"

#include <algorithm>
#include <cstddef>

namespace vorlanepic::omr {
namespace {

bool AllocateEmpty(frame::ScratchArray<LineExtent>* lines, int32_t count) {
  if (!lines->Allocate(static_cast<size_t>(count))) return false;
  std::fill_n(lines->data(), lines->size(), LineExtent{INT32_MAX, -1});
  return true;
}

void Take(LineExtent* line, int32_t at) {
  line->first = std::min(line->first, at);
  line->last = std::max(line->last, at);
}

}  // namespace

bool BlockOutline::Trace(const BlockRec& block) {
  const int32_t width = block.right - block.left + 1;
  const int32_t height = block.bottom - block.top + 1;
  if (!AllocateEmpty(&columns_, width) || !AllocateEmpty(&rows_, height)) return false;
  for (int32_t i = 0; i < block.pointCount; ++i) {
    const int32_t column = block.points[i].x - block.left;
    const int32_t row = block.points[i].y - block.top;
    if (column < 0 || column >= width || row < 0 || row >= height) continue;
    Take(&columns_[static_cast<size_t>(column)], row);
    Take(&rows_[static_cast<size_t>(row)], column);
  }
  return true;
}

}  // namespace vorlanepic::omr
