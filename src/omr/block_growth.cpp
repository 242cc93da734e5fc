#include "omr/block_growth.h"

#include <algorithm>
#include <cstdlib>
#include <new>

namespace vorlanepic::omr {
namespace {

// Runs that are held before rows are let go: what they and their blocks take stays in the cache.
constexpr size_t kWindowRuns = 32768;
// A row is let go only with some others, because the last one is linked anew each time.
constexpr size_t kLeastRows = 4;

// Room for `needed` elements: half as much again as before each time, so that the cost of moving
// them stays in proportion to their number.
template <typename T>
bool Reserve(frame::ScratchArray<T>* array, size_t needed) {
  if (needed <= array->size()) return true;
  const size_t size = std::max(needed, array->size() / 2 * 3);
  return array->Grow(size - array->size());
}

}  // namespace

BlockGrowth::~BlockGrowth() {
  for (int32_t b = 0; b < blockCount(); ++b) DropEarly(b);
}

bool BlockGrowth::Begin(int32_t firstRow, size_t rows) {
  firstRow_ = beginRow_ = firstRow;
  rowCount_ = runCount_ = blockCount_ = 0;
  return rowStarts_.Allocate(rows + 1);
}

bool BlockGrowth::isFull() const {
  const size_t lastRow = runCount_ - lastRowStart();
  return runCount_ >= std::max(kWindowRuns, kLeastRows * lastRow);
}

bool BlockGrowth::ReserveRow(size_t mostRuns) {
  return runCount_ + mostRuns <= INT32_MAX && Reserve(&runs_, runCount_ + mostRuns) &&
         Reserve(&blocks_, blockCount_ + mostRuns);
}

int64_t BlockGrowth::ExpectedCount() const {
  // What tells about the rest: this share of the rows, or so many blocks.
  constexpr int64_t kLeastShare = 16;
  constexpr int64_t kLeastBlocks = 8192;
  const auto rows = static_cast<int64_t>(rowStarts_.size() - 1);
  const int64_t linked = int64_t{firstRow_} - beginRow_ + static_cast<int64_t>(rowCount_);
  if (linked <= rows / kLeastShare && opened_ < kLeastBlocks) return opened_;
  const int64_t whole = opened_ * rows / linked;  // both factors have 31 bits
  return whole + whole / 8;
}

EarlyPoints* BlockGrowth::NeedEarly(int32_t b) {
  GrowingBlock& block = blocks_[static_cast<size_t>(b)];
  if (block.early == nullptr) {
    void* storage = std::malloc(sizeof(EarlyPoints));
    if (storage != nullptr) block.early = new (storage) EarlyPoints;
  }
  return block.early;
}

void BlockGrowth::DropEarly(int32_t b) {
  GrowingBlock& block = blocks_[static_cast<size_t>(b)];
  if (block.early == nullptr) return;
  block.early->~EarlyPoints();
  std::free(block.early);
  block.early = nullptr;
}

void BlockGrowth::DropNext(int32_t b, int32_t root) {
  GrowingBlock& before = blocks_[static_cast<size_t>(b)];
  const int32_t next = before.next;
  before.next = block(next).next;
  if (before.next < 0) blocks_[static_cast<size_t>(root)].tail = b;
  DropEarly(next);
}

void BlockGrowth::MarkOpen() {
  for (size_t r = lastRowStart(); r < runCount_; ++r) {
    const int32_t b = runs_[r].block;
    blocks_[static_cast<size_t>(b)].isOpen = true;
    blocks_[static_cast<size_t>(Root(b))].grows = true;
  }
}

void BlockGrowth::LetRowsGo() {
  const int32_t kept = NumberKept();
  if (kept == 0) {
    firstRow_ += static_cast<int32_t>(rowCount_);
    rowCount_ = runCount_ = blockCount_ = 0;
    return;
  }
  RenameKept();
  MoveKept(kept);
  RelinkLastRow();
}

// Notes in each block that stays, in place of its runs, which block stays next and the name that it
// will have itself.
int32_t BlockGrowth::NumberKept() {
  int32_t kept = 0;
  int32_t* next = &firstKept_;
  for (int32_t b = 0; b < blockCount(); ++b) {
    GrowingBlock& named = blocks_[static_cast<size_t>(b)];
    if (!named.isOpen && (named.early == nullptr || !block(Root(b)).grows)) continue;
    named.lastRun = kept++;
    *next = b;
    next = &named.firstRun;
  }
  *next = -1;
  return kept;
}

// Gives what names a block the name that it will have.
void BlockGrowth::RenameKept() {
  for (int32_t b = firstKept_; b >= 0; b = block(b).firstRun) {
    const int32_t root = Root(b);
    GrowingBlock& renamed = blocks_[static_cast<size_t>(b)];
    // Nobody looks at the old parents any more but by way of these.
    renamed.firstRow = block(root).lastRun;
    if (renamed.next >= 0) renamed.next = block(renamed.next).lastRun;
    if (root == b) renamed.tail = block(renamed.tail).lastRun;
  }
  for (size_t r = lastRowStart(); r < runCount_; ++r) {
    runs_[r].block = block(runs_[r].block).lastRun;
  }
}

void BlockGrowth::MoveKept(int32_t kept) {
  for (int32_t b = firstKept_; b >= 0;) {
    const GrowingBlock from = block(b);
    GrowingBlock& to = blocks_[static_cast<size_t>(from.lastRun)];
    to = from;
    to.parent = from.firstRow;
    to.area = 0;
    to.firstRun = to.lastRun = -1;
    to.isOpen = to.grows = false;
    b = from.firstRun;
  }
  blockCount_ = static_cast<size_t>(kept);
}

// Makes the last row the only one.
void BlockGrowth::RelinkLastRow() {
  const size_t start = lastRowStart();
  const size_t count = runCount_ - start;
  std::copy_n(&runs_[start], count, runs_.data());
  firstRow_ += static_cast<int32_t>(rowCount_) - 1;
  for (size_t r = 0; r < count; ++r) {
    GrowingBlock& owner = blocks_[static_cast<size_t>(runs_[r].block)];
    const auto run = static_cast<int32_t>(r);
    if (owner.firstRun < 0) {
      owner.firstRun = run;
      owner.firstRow = firstRow_;
    } else {
      runs_[static_cast<size_t>(owner.lastRun)].next = run;
    }
    owner.lastRun = run;
    owner.area += Length(runs_[r]);
    runs_[r].next = -1;
  }
  rowCount_ = 1;
  rowStarts_[0] = 0;
  rowStarts_[1] = runCount_ = count;
}

void BlockGrowth::LinkRow(size_t count, const ValueRange& values) {
  size_t above = rowCount_ > 0 ? rowStarts_[rowCount_ - 1] : 0;
  const size_t aboveEnd = runCount_;
  const size_t openedBefore = blockCount_;
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
  opened_ += static_cast<int64_t>(blockCount_ - openedBefore);
  if (count > 0) {
    const auto last = static_cast<int32_t>(runCount_ - 1);
    lastRunOpened_ = block(runs_[runCount_ - 1].block).firstRun == last;
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
  block.isOpen = block.grows = false;
  block.early = nullptr;
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
