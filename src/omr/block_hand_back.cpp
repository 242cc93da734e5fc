#include "omr/block_hand_back.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>

#include "frame/arithmetic.h"
#include "frame/large_pages.h"
#include "frame/prefetch.h"
#include "omr/block_points.h"

namespace vorlanepic::omr {
namespace {

// What adding a merged block's points to a list reserves beyond them.
constexpr int64_t kMergeReserve = 1024;

// Blocks by which a set grows.
constexpr int64_t kBlockStep = 100;

// Mean coordinate from a sum that may have wrapped, truncated and then rounded: adding a half and
// truncating once more raises a negative quotient by one.
int32_t MeanOf(int32_t sum, int32_t area) {
  if (area == 0) return 0;
  const int64_t quotient = static_cast<int64_t>(sum) / area;
  return static_cast<int32_t>(quotient < 0 ? quotient + 1 : quotient);
}

void Finish(BlockRec* block) {
  block->state = BLOCK_FINISHED;
  block->height = frame::WrapAdd(frame::WrapSub(block->bottom, block->top), 1);
  block->width = frame::WrapAdd(frame::WrapSub(block->right, block->left), 1);
  block->centerX = MeanOf(block->centerX, block->area);
  block->centerY = MeanOf(block->centerY, block->area);
}

// What a point list of `capacity` that holds `count` reserves to take `more` points of a run.
int64_t GrownPointCapacity(int64_t capacity, int64_t count, int64_t more) {
  constexpr int64_t kLeast = 512;
  if (count + more < capacity) return capacity;
  return std::min<int64_t>(std::max((capacity + more) * 2, kLeast), INT32_MAX);
}

// What the runs of a block come to.
struct BlockTotal {
  int64_t area = 0;
  int64_t pointCapacity = 0;  // what a point list that grows run by run reserves
  uint32_t sumX = 0;          // modulo 2^32, as the fields are that the sums end in
  uint32_t sumY = 0;
  int32_t left = INT32_MAX;  // bounds, inclusive
  int32_t right = 0;
  int32_t top = 0;
  int32_t bottom = 0;
  ValueRange values;
};

// Sums up a block's own runs and writes their points to `points`, where there is room for them.
BlockTotal TakeOwnRuns(const BlockGrowth& growth, const GrowingBlock& block, BlockPoint* points) {
  BlockTotal total;
  total.top = total.bottom = block.firstRow;
  total.values = block.values;
  auto row = static_cast<size_t>(block.firstRow - growth.firstRow());
  for (int32_t r = block.firstRun; r >= 0;) {
    const PixelRun& run = growth.run(static_cast<size_t>(r));
    if (static_cast<size_t>(r) >= growth.RowStart(row + 1)) {
      ++row;
      ++total.bottom;
    }
    // The next blocks' runs in this row: a block reaches through rows far apart in the table.
    frame::Prefetch(&run, frame::kCacheLine);
    points = WriteRun(points, run, total.bottom);
    const int64_t length = Length(run);
    total.pointCapacity = GrownPointCapacity(total.pointCapacity, total.area, length);
    total.area += length;
    total.sumX += static_cast<uint32_t>((run.start + (run.end - int64_t{1})) * length / 2);
    total.sumY += static_cast<uint32_t>(length * total.bottom);
    total.left = std::min(total.left, run.start);
    total.right = std::max(total.right, run.end - 1);
    r = run.next;
  }
  return total;
}

// Adds a merged block to the total of the one that survives.
void Fold(const BlockTotal& merged, BlockTotal* total) {
  if (total->area + merged.area >= total->pointCapacity) {
    total->pointCapacity = total->area + merged.area + kMergeReserve;
  }
  total->area += merged.area;
  total->sumX += merged.sumX;
  total->sumY += merged.sumY;
  total->left = std::min(total->left, merged.left);
  total->right = std::max(total->right, merged.right);
  total->top = std::min(total->top, merged.top);
  total->bottom = std::max(total->bottom, merged.bottom);
  Widen(&total->values, merged.values);
}

// The same for a surviving block with all that was merged into it: its own points come first.
BlockTotal TakeRuns(const BlockGrowth& growth, const GrowingBlock& root, BlockPoint* points) {
  BlockTotal total = TakeOwnRuns(growth, root, points);
  for (int32_t b = root.next; b >= 0; b = growth.block(b).next) {
    Fold(TakeOwnRuns(growth, growth.block(b), points + total.area), &total);
  }
  return total;
}

// Fills the record in its place, field by field: clearing it as a whole first, or copying it from
// elsewhere, costs more than all the rest.
void FillRecord(const BlockTotal& total, int32_t place, BlockPoint* points, BlockRec* block) {
  block->area = static_cast<int32_t>(total.area);
  block->centerX = static_cast<int32_t>(total.sumX);
  block->centerY = static_cast<int32_t>(total.sumY);
  block->left = total.left;
  block->right = total.right;
  block->bottom = total.bottom;
  block->top = total.top;
  block->reserved1 = block->reserved2 = -1;
  block->childCount = block->childCapacity = 0;
  block->children = nullptr;
  block->root = place;
  block->minValue = total.values.lowest;
  block->maxValue = total.values.highest;
  block->pointCount = block->area;
  block->pointCapacity = static_cast<int32_t>(total.pointCapacity);
  block->points = points;
  Finish(block);
}

// Memory for the points alone: reserving what the list counted up to would cost two kilobytes and
// half a page fault for every speck.
BlockPoint* NewPoints(const BlockGrowth& growth, const GrowingBlock& root) {
  uint64_t count = kSparePoints;
  for (const GrowingBlock* block = &root;; block = &growth.block(block->next)) {
    count += static_cast<uint64_t>(block->area);
    if (block->next < 0) break;
  }
  if (count > SIZE_MAX / sizeof(BlockPoint)) return nullptr;
  return static_cast<BlockPoint*>(std::malloc(static_cast<size_t>(count) * sizeof(BlockPoint)));
}

// Finishes or releases what earlier calls left in the set's first `count` records and moves those
// that stay to the front. Returns how many do.
int32_t CompactEarlier(BlockRec* blocks, int32_t count) {
  int32_t kept = 0;
  for (int32_t i = 0; i < count; ++i) {
    BlockRec block = blocks[i];
    std::free(block.children);
    block.children = nullptr;
    block.childCount = block.childCapacity = 0;
    if (block.state == BLOCK_GROWING) Finish(&block);
    if (block.state != BLOCK_FINISHED) {
      std::free(block.points);
      continue;
    }
    block.root = kept;
    blocks[kept++] = block;
  }
  return kept;
}

}  // namespace

int32_t BoxDiagonal(int32_t width, int32_t height) {
  const double w = width;
  const double h = height;
  return frame::TruncToInt32(std::sqrt(w * w + h * h));
}

BlockHandBack::BlockHandBack(int32_t shortestDiagonal, BlockSetRec* set)
    : set_(set),
      shortestDiagonal_(shortestDiagonal),
      reserved_(set->blocks != nullptr ? set->capacity : 0),
      end_(set->count) {}

BlockHandBack::~BlockHandBack() {
  for (int32_t i = set_->count; i < end_; ++i) std::free(set_->blocks[i].points);
}

bool BlockHandBack::Add(const BlockGrowth& growth) {
  if (growth.blockCount() == 0) return true;
  opened_ += growth.blockCount();
  lastRunOpened_ = growth.lastRunOpened();
  // Half as much again each time, so that the cost of moving records stays in proportion.
  const int64_t needed = GrownCapacity();
  if (needed > reserved_ && !Reserve(std::max(needed, reserved_ / 2 * 3))) return false;
  for (int32_t b = 0; b < growth.blockCount(); ++b) {
    const GrowingBlock& root = growth.block(b);
    if (root.parent != b) continue;
    BlockPoint* points = NewPoints(growth, root);
    if (points == nullptr) return false;
    const BlockTotal total = TakeRuns(growth, root, points);
    BlockRec& block = set_->blocks[end_];
    FillRecord(total, end_, points, &block);
    ++end_;
    if (total.pointCapacity > INT32_MAX) return false;
    if (shortestDiagonal_ > 0 && BoxDiagonal(block.width, block.height) < shortestDiagonal_) {
      std::free(points);
      --end_;
    }
  }
  return true;
}

bool BlockHandBack::Finish() {
  const int64_t capacity = GrownCapacity();
  if (capacity != reserved_ && capacity > 0 && !Reserve(capacity)) return false;
  set_->capacity = static_cast<int32_t>(capacity);

  const int32_t kept = CompactEarlier(set_->blocks, set_->count);
  const int32_t dropped = set_->count - kept;
  if (dropped > 0) {
    std::memmove(set_->blocks + kept, set_->blocks + set_->count,
                 static_cast<size_t>(end_ - set_->count) * sizeof(BlockRec));
    for (int32_t i = kept; i < end_ - dropped; ++i) set_->blocks[i].root = i;
  }
  set_->count = end_ -= dropped;
  return true;
}

// The capacity of a set that grew block by block and run by run: it grows when a block is opened or
// a run added while it is full.
int64_t BlockHandBack::GrownCapacity() const {
  if (opened_ == 0) return set_->capacity;
  const int64_t needed = set_->count + opened_ + (lastRunOpened_ ? 0 : 1);
  const int64_t missing = std::max<int64_t>(needed - set_->capacity, 0);
  return set_->capacity + (missing + kBlockStep - 1) / kBlockStep * kBlockStep;
}

bool BlockHandBack::Reserve(int64_t capacity) {
  if (capacity > INT32_MAX || static_cast<uint64_t>(capacity) > SIZE_MAX / sizeof(BlockRec)) {
    return false;
  }
  const size_t bytes = static_cast<size_t>(capacity) * sizeof(BlockRec);
  void* moved = std::realloc(set_->blocks, bytes);
  if (moved == nullptr) return false;
  set_->blocks = static_cast<BlockRec*>(moved);
  reserved_ = capacity;
  frame::AdviseLargePages(moved, bytes);
  return true;
}

}  // namespace vorlanepic::omr
