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

// What a surviving block comes to with all that was merged into it.
struct BlockTotal {
  GrowingBlock sums;
  int64_t pointCapacity;
};

BlockTotal TotalOf(const BlockGrowth& growth, int32_t root) {
  BlockTotal total{growth.block(root), growth.block(root).pointCapacity};
  for (int32_t b = total.sums.next; b >= 0; b = growth.block(b).next) {
    const GrowingBlock& merged = growth.block(b);
    if (total.sums.area + merged.area >= total.pointCapacity) {
      total.pointCapacity = total.sums.area + merged.area + kMergeReserve;
    }
    total.sums.area += merged.area;
    total.sums.sumX = WrapAdd(total.sums.sumX, merged.sumX);
    total.sums.sumY = WrapAdd(total.sums.sumY, merged.sumY);
    total.sums.left = std::min(total.sums.left, merged.left);
    total.sums.right = std::max(total.sums.right, merged.right);
    total.sums.top = std::min(total.sums.top, merged.top);
    total.sums.bottom = std::max(total.sums.bottom, merged.bottom);
    Widen(&total.sums.values, merged.values);
  }
  return total;
}

// Fills the record in its place: a copy made elsewhere costs more than all the rest.
void FillRecord(const BlockTotal& total, BlockRec* block) {
  const GrowingBlock& sums = total.sums;
  *block = {};
  block->area = block->pointCount = static_cast<int32_t>(sums.area);
  block->centerX = sums.sumX;
  block->centerY = sums.sumY;
  block->left = sums.left;
  block->right = sums.right;
  block->top = sums.top;
  block->bottom = sums.bottom;
  block->reserved1 = block->reserved2 = -1;
  block->minValue = Smallest(sums.values);
  block->maxValue = Largest(sums.values);
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
  const auto count = static_cast<uint64_t>(total.sums.area);
  if (total.pointCapacity > INT32_MAX || count > SIZE_MAX / sizeof(BlockPoint)) return nullptr;
  return static_cast<BlockPoint*>(std::malloc(static_cast<size_t>(count) * sizeof(BlockPoint)));
}

// Gives each block of a chain its piece of the root's list: the root's own points first.
void DividePoints(const BlockGrowth& growth, int32_t root, BlockPoint* points,
                  ScratchArray<PointCursor>* cursors) {
  for (int32_t b = root; b >= 0; b = growth.block(b).next) {
    BlockPoint* end = points + growth.block(b).area;
    (*cursors)[static_cast<size_t>(b)] = {points, end};
    points = end;
  }
}

// Releases the points of the records behind the first `count`.
void ReleasePoints(BlockRec* blocks, int32_t count, int32_t end) {
  for (int32_t i = count; i < end; ++i) std::free(blocks[i].points);
}

// Writes the records of the surviving blocks behind those of the set and reserves their points.
int32_t AddRecords(const BlockGrowth& growth, int32_t shortestDiagonal, BlockSetRec* set,
                   ScratchArray<PointCursor>* cursors, int32_t* end) {
  *end = set->count;
  for (int32_t b = 0; b < growth.blockCount(); ++b) {
    if (growth.block(b).parent != b) continue;
    const BlockTotal total = TotalOf(growth, b);
    BlockRec& block = set->blocks[*end];
    FillRecord(total, &block);
    if (BoxDiagonal(block.width, block.height) < shortestDiagonal) continue;
    block.points = NewPoints(total);
    if (block.points == nullptr) {
      ReleasePoints(set->blocks, set->count, *end);
      return OUT_OF_MEMORY;
    }
    block.root = (*end)++;
    DividePoints(growth, b, block.points, cursors);
  }
  return STATUS_OK;
}

void WritePoints(const BlockGrowth& growth, ScratchArray<PointCursor>* cursors) {
  for (size_t row = 0; row < growth.rowCount(); ++row) {
    const int32_t y = growth.firstRow() + static_cast<int32_t>(row);
    for (size_t r = growth.RowStart(row); r < growth.RowStart(row + 1); ++r) {
      PointCursor& cursor = (*cursors)[static_cast<size_t>(growth.label(r))];
      if (cursor.next != nullptr) WriteRun(&cursor, growth.run(r), y);
    }
  }
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

int32_t HandBack(BlockGrowth* growth, int32_t shortestDiagonal, BlockSetRec* set) {
  ScratchArray<PointCursor> cursors;
  if (!cursors.Allocate(static_cast<size_t>(growth->blockCount()))) return OUT_OF_MEMORY;
  int32_t status = GrowSet(GrownSetCapacity(*growth, *set), set);
  if (status != STATUS_OK) return status;

  int32_t end = 0;
  status = AddRecords(*growth, shortestDiagonal, set, &cursors, &end);
  if (status != STATUS_OK) return status;
  WritePoints(*growth, &cursors);

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
