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

// Writes the points of the block's own runs in front of run `end` to `points`, where there is room
// for them, and returns what they come to, with the reserve of a list that held `area` points and
// reserved `capacity` before. The number behind the last run, -1, lies behind every `end`.
BlockTotal TakeOwnRuns(const BlockGrowth& growth, const GrowingBlock& block, size_t end,
                       BlockPoint* points, int64_t area = 0, int64_t capacity = 0) {
  BlockTotal total;  // made here: one that is handed in would be waited for
  total.area = area;
  total.pointCapacity = capacity;
  auto r = static_cast<size_t>(block.firstRun);
  if (r < end) {
    int32_t y = block.firstRow;
    total.top = y;
    auto row = static_cast<size_t>(y - growth.firstRow());
    for (;;) {
      const PixelRun& run = growth.run(r);
      if (r >= growth.RowStart(row + 1)) {
        ++row;
        ++y;
      }
      // The next blocks' runs in this row: a block reaches through rows far apart in the table.
      frame::Prefetch(&run, frame::kCacheLine);
      points = WriteRun(points, run, y);
      AddRun(run, y, &total);
      r = static_cast<size_t>(run.next);
      if (r >= end) break;
    }
  }
  total.area -= area;
  return total;
}

// What the runs of a finished block come to whose rows are all there. Its own points come first.
BlockTotal TakeRuns(const BlockGrowth& growth, const GrowingBlock& root, BlockPoint* points) {
  const size_t end = growth.runCount();
  BlockTotal total = TakeOwnRuns(growth, root, end, points);
  total.values = root.values;
  for (int32_t b = root.next; b >= 0; b = growth.block(b).next) {
    BlockTotal merged = TakeOwnRuns(growth, growth.block(b), end, points + total.area);
    merged.values = growth.block(b).values;
    ReserveMerged(merged.area, &total);
    Fold(merged, &total);
  }
  return total;
}

// Puts the points of the block's own runs in front of run `end` to its early points.
bool TakeEarly(int32_t b, size_t end, BlockGrowth* growth) {
  EarlyPoints* early = growth->NeedEarly(b);
  const GrowingBlock& block = growth->block(b);
  if (early == nullptr || !early->Reserve(static_cast<uint64_t>(block.area))) return false;
  Widen(&early->own.values, block.values);
  BlockPoint* points = &early->points[early->pointCount];
  BlockTotal* own = &early->own;
  const BlockTotal more = TakeOwnRuns(*growth, block, end, points, own->area, own->pointCapacity);
  own->pointCapacity = more.pointCapacity;
  Fold(more, own);
  early->pointCount = static_cast<size_t>(early->own.area + early->merged.area);
  return true;
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

// A record whose block grows on, or is none of its own any more.
void FillPlace(BlockRec* block) {
  *block = {};
  block->state = BLOCK_GROWING;
}

// The record's place that a block which grows on has; -1: none.
int32_t PlaceOf(const GrowingBlock& block) {
  return block.early != nullptr ? block.early->place : -1;
}

// A block with all that was merged into it.
struct BlockSize {
  uint64_t points;      // of the rows that are there
  bool hasEarlyPoints;  // of rows that were let go
};

BlockSize SizeOf(const BlockGrowth& growth, const GrowingBlock& root) {
  BlockSize size{};
  for (const GrowingBlock* block = &root;; block = &growth.block(block->next)) {
    size.points += static_cast<uint64_t>(block->area);
    size.hasEarlyPoints |= block->early != nullptr;
    if (block->next < 0) return size;
  }
}

// Memory for the points alone: reserving what the list counted up to would cost two kilobytes and
// half a page fault for every speck.
BlockPoint* ResizePoints(BlockPoint* points, uint64_t count) {
  count += kSparePoints;
  if (count > SIZE_MAX / sizeof(BlockPoint)) return nullptr;
  const size_t bytes = static_cast<size_t>(count) * sizeof(BlockPoint);
  return static_cast<BlockPoint*>(std::realloc(points, bytes));
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
  if (isFinished_) return;
  hasPlaces_ = true;  // those of blocks that were to grow
  DropPlaces();
  set_->count = end_;
  set_->capacity = static_cast<int32_t>(reserved_);
}

bool BlockHandBack::HandOver(BlockGrowth* growth) {
  opened_ = growth->openedCount();
  lastRunOpened_ = growth->lastRunOpened();
  // Half as much again each time, so that the cost of moving records stays in proportion, or what
  // the rest of the image is expected to add; its first rows may tell of far too many.
  constexpr int64_t kMostAhead = 32;
  const int64_t needed = GrownCapacity();
  const int64_t expected = std::min(set_->count + growth->ExpectedCount(), needed * kMostAhead);
  if (needed > reserved_ && !Reserve(std::max({needed, reserved_ / 2 * 3, expected})) &&
      !Reserve(needed)) {
    return false;
  }
  DropMergedPlaces(growth);
  for (int32_t b = 0; b < growth->blockCount(); ++b) {
    const GrowingBlock& root = growth->block(b);
    if (root.parent != b) continue;
    if (!(root.grows ? PutAside(b, growth) : TakeFinished(b, growth))) return false;
  }
  growth->LetRowsGo();
  return true;
}

bool BlockHandBack::TakeFinished(int32_t b, BlockGrowth* growth) {
  const GrowingBlock& root = growth->block(b);
  const BlockSize size = SizeOf(*growth, root);
  if (size.hasEarlyPoints) return TakeGrown(b, growth);
  BlockPoint* points = ResizePoints(nullptr, size.points);
  if (points == nullptr) return false;
  const int32_t place = NewPlace();
  const BlockTotal total = TakeRuns(*growth, root, points);
  FillRecord(total, place, points, &set_->blocks[place]);
  return Keep(total.pointCapacity, place);
}

// Joins the early points of a block with those of the blocks merged into it.
bool BlockHandBack::TakeGrown(int32_t b, BlockGrowth* growth) {
  const size_t end = growth->runCount();
  if (!TakeEarly(b, end, growth)) return false;
  const GrowingBlock& root = growth->block(b);
  EarlyPoints* all = root.early;
  while (root.next >= 0) {
    if (!TakeEarly(root.next, end, growth)) return false;
    if (!all->Append(*growth->block(root.next).early)) return false;
    growth->DropNext(b, b);
  }
  BlockPoint* points = ResizePoints(all->points.data(), all->pointCount);
  if (points == nullptr) return false;
  all->points.Release();
  const BlockTotal total = all->Total();
  const int32_t place = all->place >= 0 ? all->place : NewPlace();
  growth->DropEarly(b);
  FillRecord(total, place, points, &set_->blocks[place]);
  return Keep(total.pointCapacity, place);
}

// Makes early points of a growing block's rows but the last. Neighbours in its chain that take no
// more runs become one.
bool BlockHandBack::PutAside(int32_t root, BlockGrowth* growth) {
  const size_t end = growth->lastRowStart();
  int32_t before = -1;  // in the chain, if it takes no more runs
  for (int32_t b = root; b >= 0;) {
    const GrowingBlock& block = growth->block(b);
    const int32_t next = block.next;
    const bool isNew = block.early == nullptr && static_cast<size_t>(block.firstRun) >= end;
    if (!isNew && !TakeEarly(b, end, growth)) return false;
    if (block.isOpen) {
      before = -1;
    } else if (before < 0) {
      before = b;
    } else {
      if (!growth->block(before).early->Append(*block.early)) return false;
      growth->DropNext(before, root);
    }
    b = next;
  }
  EarlyPoints* early = growth->block(root).early;
  if (early != nullptr && early->place < 0) {
    early->place = NewPlace();
    FillPlace(&set_->blocks[early->place]);
  }
  return true;
}

int32_t BlockHandBack::NewPlace() { return end_++; }

bool BlockHandBack::Keep(int64_t pointCapacity, int32_t place) {
  BlockRec& block = set_->blocks[place];
  const bool isShort =
      shortestDiagonal_ > 0 && BoxDiagonal(block.width, block.height) < shortestDiagonal_;
  if (pointCapacity > INT32_MAX || isShort) {
    std::free(block.points);
    FillPlace(&block);
    if (place == end_ - 1) {
      --end_;
    } else {
      hasPlaces_ = true;
    }
  }
  return pointCapacity <= INT32_MAX;
}

// Moves records together over the places of blocks that were merged since. Mostly these lie among
// the last records, which are still in the cache; where they don't, DropPlaces does it in the end.
void BlockHandBack::DropMergedPlaces(BlockGrowth* growth) {
  constexpr int32_t kMostMoved = 32768;
  int32_t firstDropped = end_;
  for (int32_t b = 0; b < growth->blockCount(); ++b) {
    const GrowingBlock& block = growth->block(b);
    if (PlaceOf(block) < 0 || block.parent == b) continue;
    firstDropped = std::min(firstDropped, block.early->place);
    block.early->place = -1;
  }
  if (firstDropped == end_) return;
  if (end_ - firstDropped > kMostMoved) {
    hasPlaces_ = true;
    return;
  }
  int32_t kept = firstDropped;
  int32_t b = 0;
  for (int32_t i = firstDropped; i < end_; ++i) {
    if (set_->blocks[i].state != BLOCK_FINISHED) {
      // Blocks got their places in the order in which they were opened.
      while (b < growth->blockCount() && PlaceOf(growth->block(b)) < i) ++b;
      if (b == growth->blockCount() || PlaceOf(growth->block(b)) != i) continue;
      growth->block(b).early->place = kept;
    }
    if (kept != i) set_->blocks[kept] = set_->blocks[i];
    set_->blocks[kept].root = kept;
    ++kept;
  }
  end_ = kept;
}

// Moves the records added together where places of no block lie between them.
void BlockHandBack::DropPlaces() {
  if (!hasPlaces_) return;
  int32_t kept = set_->count;
  for (int32_t i = set_->count; i < end_; ++i) {
    if (set_->blocks[i].state != BLOCK_FINISHED) continue;
    if (kept != i) set_->blocks[kept] = set_->blocks[i];
    set_->blocks[kept].root = kept;
    ++kept;
  }
  end_ = kept;
}

bool BlockHandBack::Finish() {
  const int64_t capacity = GrownCapacity();
  if (capacity != reserved_ && capacity > 0 && !Reserve(capacity)) return false;
  isFinished_ = true;
  set_->capacity = static_cast<int32_t>(capacity);

  DropPlaces();
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
