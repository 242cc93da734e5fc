#include "omr/block_growth.h"

#include <algorithm>

#include "frame/large_pages.h"

namespace vorlanepic::omr {
namespace {

// Room for `needed` elements: half as much again as before each time, so that the cost of moving
// them stays in proportion to their number, or what the rest of the image is `expected` to add.
template <typename T>
bool Reserve(frame::ScratchArray<T>* array, size_t needed, size_t expected) {
  if (needed <= array->size()) return true;
  const size_t size = std::max({needed, array->size() / 2 * 3, expected});
  if (!array->Grow(size - array->size())) return false;
  frame::AdviseLargePages(array->data(), array->size() * sizeof(T));
  return true;
}

}  // namespace

bool BlockGrowth::Begin(int32_t firstRow, size_t rows) {
  firstRow_ = firstRow;
  rowCount_ = runCount_ = blockCount_ = 0;
  return rowStarts_.Allocate(rows + 1);
}

void BlockGrowth::Restart() {
  firstRow_ += static_cast<int32_t>(rowCount_);
  rowCount_ = runCount_ = blockCount_ = 0;
}

bool BlockGrowth::ReserveRow(size_t mostRuns) {
  return runCount_ + mostRuns <= INT32_MAX &&
         Reserve(&runs_, runCount_ + mostRuns, Expected(runCount_)) &&
         Reserve(&blocks_, blockCount_ + mostRuns, Expected(blockCount_));
}

size_t BlockGrowth::Expected(size_t count) const {
  constexpr size_t kLeastShare = 16;  // of the rows, before they tell anything about the rest
  const size_t rows = rowStarts_.size() - 1;
  if (rowCount_ < rows / kLeastShare + 1) return 0;
  const uint64_t whole = static_cast<uint64_t>(count) * rows / rowCount_;
  return static_cast<size_t>(std::min<uint64_t>(whole + whole / 8, SIZE_MAX));
}

void BlockGrowth::LinkRow(size_t count, const ValueRange& values) {
  size_t above = rowCount_ > 0 ? rowStarts_[rowCount_ - 1] : 0;
  const size_t aboveEnd = runCount_;
  for (size_t r = aboveEnd; r < aboveEnd + count; ++r) {
    const PixelRun run = runs_[r];
    while (above < aboveEnd && runs_[above].end < run.start) ++above;
    if (above == aboveEnd || runs_[above].start > run.end) {
      Open(r, values);
      continue;
    }
    Add(r, runs_[above].block, values);
    // All further runs above that this one touches; the last of them may touch the next run too.
    while (above + 1 < aboveEnd && runs_[above + 1].start <= run.end) {
      ++above;
      Merge(Root(runs_[r].block), Root(runs_[above].block));
    }
  }
  runCount_ += count;
  rowStarts_[++rowCount_] = runCount_;
}

int32_t BlockGrowth::Root(int32_t b) {
  int32_t* parent = &blocks_[static_cast<size_t>(b)].parent;
  while (*parent != b) {
    int32_t* grandparent = &blocks_[static_cast<size_t>(*parent)].parent;
    b = *parent = *grandparent;
    parent = &blocks_[static_cast<size_t>(b)].parent;
  }
  return b;
}

void BlockGrowth::Open(size_t r, const ValueRange& values) {
  const auto run = static_cast<int32_t>(r);
  const auto b = static_cast<int32_t>(blockCount_++);
  const int32_t y = firstRow_ + static_cast<int32_t>(rowCount_);
  // Field by field: a record made elsewhere and copied would have to wait for its parts.
  GrowingBlock& block = blocks_[static_cast<size_t>(b)];
  block.area = Length(runs_[r]);
  block.firstRun = block.lastRun = run;
  block.firstRow = y;
  block.parent = block.tail = b;
  block.next = -1;
  block.values = values;
  runs_[r].block = b;
  runs_[r].next = -1;
}

void BlockGrowth::Add(size_t r, int32_t b, const ValueRange& values) {
  GrowingBlock& block = blocks_[static_cast<size_t>(b)];
  runs_[static_cast<size_t>(block.lastRun)].next = static_cast<int32_t>(r);
  block.lastRun = static_cast<int32_t>(r);
  block.area += Length(runs_[r]);
  Widen(&block.values, values);
  runs_[r].block = b;
  runs_[r].next = -1;
}

void BlockGrowth::Merge(int32_t survivor, int32_t other) {
  if (survivor == other) return;
  GrowingBlock& root = blocks_[static_cast<size_t>(survivor)];
  GrowingBlock& merged = blocks_[static_cast<size_t>(other)];
  merged.parent = survivor;
  blocks_[static_cast<size_t>(root.tail)].next = other;
  root.tail = merged.tail;
}

}  // namespace vorlanepic::omr
