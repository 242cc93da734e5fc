#include "omr/block_hand_back.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>

#include "frame/arithmetic.h"
#include "omr/block_points.h"
#include "omr/large_pages.h"

namespace vorlanepic {
namespace {

// What adding a merged block's points to a list reserves beyond them.
constexpr int64_t kMergeReserve = 1024;

// Blocks by which a set grows.
constexpr int64_t kBlockStep = 100;

// Mean coordinate from a sum that may have wrapped. A negative quotient changes when it is rounded.
int32_t MeanOf(int32_t sum, int32_t area) {
  if (area == 0) return 0;
  const int64_t quotient = static_cast<int64_t>(sum) / area;
  return RoundToInt32(static_cast<double>(quotient));
}

void Finish(BlockRec* block) {
  block->state = BLOCK_FINISHED;
  block->height = WrapAdd(WrapSub(block->bottom, block->top), 1);
  block->width = WrapAdd(WrapSub(block->right, block->left), 1);
  block->centerX = MeanOf(block->centerX, block->area);
  block->centerY = MeanOf(block->centerY, block->area);
}

// Sums of coordinates wrap, as the 32-bit fields do that they end in.
int32_t Low32(int64_t sum) { return static_cast<int32_t>(static_cast<uint32_t>(sum)); }

// What a point list of `capacity` that holds `count` reserves to take `more` points of a run.
int64_t GrownCapacity(int64_t capacity, int64_t count, int64_t more) {
  constexpr int64_t kLeast = 512;
  if (count + more < capacity) return capacity;
  return std::min<int64_t>(std::max((capacity + more) * 2, kLeast), INT32_MAX);
}

// Calls visit(run, y) for each of the block's own runs, in the order in which they were added.
template <typename Visit>
void ForEachRun(const BlockGrowth& growth, const GrowingBlock& block, Visit visit) {
  size_t row = static_cast<size_t>(block.firstRow - growth.firstRow());
  for (int32_t r = block.firstRun; r >= 0;) {
    if (static_cast<size_t>(r) >= growth.RowStart(row + 1)) ++row;
    const PixelRun& run = growth.run(static_cast<size_t>(r));
    visit(run, growth.firstRow() + static_cast<int32_t>(row));
    r = run.next;
  }
}

// What the runs of a block come to.
struct BlockTotal {
  int64_t area = 0;
  int64_t pointCapacity = 0;  // what a point list that grows run by run reserves
  int64_t sumX = 0;           // exact: modulo 2^64
  int64_t sumY = 0;
  int32_t left = INT32_MAX;  // bounds, inclusive
  int32_t right = 0;
  int32_t top = 0;
  int32_t bottom = 0;
  ValueRange values;
};

BlockTotal TotalOfOwn(const BlockGrowth& growth, const GrowingBlock& block) {
  BlockTotal total;
  ForEachRun(growth, block, [&total](const PixelRun& run, int32_t y) {
    const int64_t length = run.end - static_cast<int64_t>(run.start);
    total.pointCapacity = GrownCapacity(total.pointCapacity, total.area, length);
    total.area += length;
    total.sumX += (run.start + (run.end - int64_t{1})) * length / 2;
    total.sumY += length * y;
    total.left = std::min(total.left, run.start);
    total.right = std::max(total.right, run.end - 1);
    total.bottom = y;
  });
  total.top = block.firstRow;
  total.values = block.values;
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

BlockTotal TotalOf(const BlockGrowth& growth, const GrowingBlock& root) {
  BlockTotal total = TotalOfOwn(growth, root);
  for (int32_t b = root.next; b >= 0; b = growth.block(b).next) {
    Fold(TotalOfOwn(growth, growth.block(b)), &total);
  }
  return total;
}

// Fills the record in its place: a copy made elsewhere costs more than all the rest.
void FillRecord(const BlockTotal& total, BlockRec* block) {
  *block = {};
  block->area = block->pointCount = static_cast<int32_t>(total.area);
  block->centerX = Low32(total.sumX);
  block->centerY = Low32(total.sumY);
  block->left = total.left;
  block->right = total.right;
  block->top = total.top;
  block->bottom = total.bottom;
  block->reserved1 = block->reserved2 = -1;
  block->minValue = total.values.lowest;
  block->maxValue = total.values.highest;
  block->pointCapacity = static_cast<int32_t>(total.pointCapacity);
  Finish(block);
}

// The capacity of a set that grew block by block and run by run: it grows when a block is opened or
// a run added while it is full.
int64_t GrownSetCapacity(const BlockGrowth& growth, const BlockSetRec& set) {
  const int64_t opened = growth.blockCount();
  if (opened == 0) return set.capacity;
  const int64_t needed = set.count + opened + (growth.lastRunOpened() ? 0 : 1);
  const int64_t missing = std::max<int64_t>(needed - set.capacity, 0);
  return set.capacity + (missing + kBlockStep - 1) / kBlockStep * kBlockStep;
}

int32_t GrowSet(int64_t capacity, BlockSetRec* set) {
  if (capacity == set->capacity && (set->blocks != nullptr || capacity <= 0)) return STATUS_OK;
  if (capacity > INT32_MAX || static_cast<uint64_t>(capacity) > SIZE_MAX / sizeof(BlockRec)) {
    return OUT_OF_MEMORY;
  }
  void* grown = std::realloc(set->blocks, static_cast<size_t>(capacity) * sizeof(BlockRec));
  if (grown == nullptr) return OUT_OF_MEMORY;
  set->blocks = static_cast<BlockRec*>(grown);
  AdviseLargePages(grown, static_cast<size_t>(capacity) * sizeof(BlockRec));
  set->capacity = static_cast<int32_t>(capacity);
  return STATUS_OK;
}

// Memory for the points alone: reserving what the list counted up to would cost two kilobytes and
// half a page fault for every speck.
BlockPoint* NewPoints(const BlockTotal& total) {
  const uint64_t count = static_cast<uint64_t>(total.area) + kSparePoints;
  if (total.pointCapacity > INT32_MAX || count > SIZE_MAX / sizeof(BlockPoint)) return nullptr;
  return static_cast<BlockPoint*>(std::malloc(static_cast<size_t>(count) * sizeof(BlockPoint)));
}

// The root's own points first, then those of the blocks that were merged into it.
void WritePoints(const BlockGrowth& growth, const GrowingBlock& root, BlockPoint* points) {
  const auto write = [&points](const PixelRun& run, int32_t y) {
    points = WriteRun(points, run, y);
  };
  ForEachRun(growth, root, write);
  for (int32_t b = root.next; b >= 0; b = growth.block(b).next) {
    ForEachRun(growth, growth.block(b), write);
  }
}

// Releases the points of the records behind the first `count`.
void ReleasePoints(BlockRec* blocks, int32_t count, int32_t end) {
  for (int32_t i = count; i < end; ++i) std::free(blocks[i].points);
}

// Writes the records of the surviving blocks, with their points, behind those of the set.
int32_t AddRecords(const BlockGrowth& growth, int32_t shortestDiagonal, BlockSetRec* set,
                   int32_t* end) {
  *end = set->count;
  for (int32_t b = 0; b < growth.blockCount(); ++b) {
    const GrowingBlock& root = growth.block(b);
    if (root.parent != b) continue;
    const BlockTotal total = TotalOf(growth, root);
    BlockRec& block = set->blocks[*end];
    FillRecord(total, &block);
    if (shortestDiagonal > 0 && BoxDiagonal(block.width, block.height) < shortestDiagonal) continue;
    block.points = NewPoints(total);
    if (block.points == nullptr) {
      ReleasePoints(set->blocks, set->count, *end);
      return OUT_OF_MEMORY;
    }
    block.root = (*end)++;
    WritePoints(growth, root, block.points);
  }
  return STATUS_OK;
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
  return TruncToInt32(std::sqrt(w * w + h * h));
}

int32_t HandBack(const BlockGrowth& growth, int32_t shortestDiagonal, BlockSetRec* set) {
  int32_t status = GrowSet(GrownSetCapacity(growth, *set), set);
  if (status != STATUS_OK) return status;

  int32_t end = 0;
  status = AddRecords(growth, shortestDiagonal, set, &end);
  if (status != STATUS_OK) return status;

  const int32_t kept = CompactEarlier(set->blocks, set->count);
  const int32_t dropped = set->count - kept;
  if (dropped > 0) {
    std::memmove(set->blocks + kept, set->blocks + set->count,
                 static_cast<size_t>(end - set->count) * sizeof(BlockRec));
    for (int32_t i = kept; i < end - dropped; ++i) set->blocks[i].root = i;
  }
  set->count = end - dropped;
  return STATUS_OK;
}

}  // namespace vorlanepic
