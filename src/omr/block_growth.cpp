#include "omr/block_growth.h"

#include <algorithm>

#include "frame/arithmetic.h"
#include "omr/large_pages.h"

namespace vorlanepic {
namespace {

// Sums of coordinates wrap, as the 32-bit fields do that they end in.
int32_t Low32(int64_t sum) { return static_cast<int32_t>(static_cast<uint32_t>(sum)); }

int32_t SumOfColumns(const PixelRun& run) {
  const int64_t length = run.end - static_cast<int64_t>(run.start);
  return Low32((run.start + (run.end - int64_t{1})) * length / 2);
}

// What a point list of `capacity` that holds `count` reserves to take `more` points of a run.
int32_t GrownCapacity(int32_t capacity, int64_t count, int64_t more) {
  constexpr int64_t kLeast = 512;
  if (count + more < capacity) return capacity;
  const int64_t grown = std::max((capacity + more) * 2, kLeast);
  return static_cast<int32_t>(std::min<int64_t>(grown, INT32_MAX));
}

// Room for `needed` elements: half as much again as before each time, so that the cost of moving
// them stays in proportion to their number, or what the rest of the image is `expected` to add.
template <typename T>
bool Reserve(ScratchArray<T>* array, size_t needed, size_t expected) {
  if (needed <= array->size()) return true;
  const size_t size = std::max({needed, array->size() / 2 * 3, expected});
  if (!array->Grow(size - array->size())) return false;
  AdviseLargePages(array->data(), array->size() * sizeof(T));
  return true;
}

}  // namespace

bool BlockGrowth::Begin(int32_t firstRow, size_t rows) {
  firstRow_ = firstRow;
  rowCount_ = runCount_ = blockCount_ = lastOpener_ = 0;
  return rowStarts_.Allocate(rows + 1);
}

bool BlockGrowth::ReserveRow(size_t mostRuns) {
  const size_t blocks = blockCount_ + mostRuns;
  return blocks <= INT32_MAX && Reserve(&runs_, runCount_ + mostRuns, Expected(runCount_)) &&
         Reserve(&labels_, runCount_ + mostRuns, Expected(runCount_)) &&
         Reserve(&blocks_, blocks, Expected(blockCount_));
}

size_t BlockGrowth::Expected(size_t count) const {
  constexpr size_t kLeastShare = 16;  // of the rows, before they tell anything about the rest
  const size_t rows = rowStarts_.size() - 1;
  if (rowCount_ < rows / kLeastShare + 1) return 0;
  const uint64_t whole = static_cast<uint64_t>(count) * rows / rowCount_;
  return static_cast<size_t>(std::min<uint64_t>(whole + whole / 8, SIZE_MAX));
}

void BlockGrowth::LinkRow(size_t count) {
  size_t above = rowCount_ > 0 ? rowStarts_[rowCount_ - 1] : 0;
  const size_t aboveEnd = runCount_;
  const int32_t y = firstRow_ + static_cast<int32_t>(rowCount_);
  runCount_ += count;
  rowStarts_[++rowCount_] = runCount_;
  for (size_t r = aboveEnd; r < runCount_; ++r) {
    const PixelRun run = runs_[r];
    while (above < aboveEnd && runs_[above].end < run.start) ++above;
    if (above == aboveEnd || runs_[above].start > run.end) {
      Open(r, y);
      continue;
    }
    Add(r, labels_[above], y);
    // All further runs above that this one touches; the last of them may touch the next run too.
    while (above + 1 < aboveEnd && runs_[above + 1].start <= run.end) {
      ++above;
      Merge(Root(labels_[r]), Root(labels_[above]));
    }
  }
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

void BlockGrowth::Open(size_t r, int32_t y) {
  const PixelRun& run = runs_[r];
  const auto b = static_cast<int32_t>(blockCount_);
  GrowingBlock& block = blocks_[blockCount_++];
  Empty(&block.values);
  block.area = run.end - run.start;
  block.sumX = SumOfColumns(run);
  block.sumY = Low32(block.area * y);
  block.left = run.start;
  block.right = run.end - 1;
  block.top = block.bottom = y;
  block.parent = block.tail = b;
  block.next = -1;
  block.pointCapacity = GrownCapacity(0, 0, block.area);
  labels_[r] = b;
  lastOpener_ = r;
}

void BlockGrowth::Add(size_t r, int32_t b, int32_t y) {
  const PixelRun& run = runs_[r];
  GrowingBlock& block = blocks_[static_cast<size_t>(b)];
  const int32_t length = run.end - run.start;
  block.pointCapacity = GrownCapacity(block.pointCapacity, block.area, length);
  block.area += length;
  block.sumX = WrapAdd(block.sumX, SumOfColumns(run));
  block.sumY = WrapAdd(block.sumY, WrapMul(length, y));
  block.left = std::min(block.left, run.start);
  block.right = std::max(block.right, run.end - 1);
  block.bottom = y;
  labels_[r] = b;
}

void BlockGrowth::Merge(int32_t survivor, int32_t other) {
  if (survivor == other) return;
  GrowingBlock& root = blocks_[static_cast<size_t>(survivor)];
  GrowingBlock& merged = blocks_[static_cast<size_t>(other)];
  merged.parent = survivor;
  blocks_[static_cast<size_t>(root.tail)].next = other;
  root.tail = merged.tail;
}

}  // namespace vorlanepic
