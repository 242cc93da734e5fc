// The blocks of one marking call while its rows are linked.
#pragma once

#include <cstddef>
#include <cstdint>

#include "frame/scratch.h"
#include "omr/early_points.h"
#include "omr/row_runs.h"
#include "omr/value_range.h"

namespace vorlanepic::omr {

// The runs added to one block, as a chain of their own. Blocks that meet are merged: one of them
// survives as the root, and its chain lists the others in the order in which their points follow
// its own. A merged block still takes the runs that touch its own; all are summed up at the end.
struct GrowingBlock {
  int64_t area;  // pixels of its own runs
  int32_t firstRun;
  int32_t lastRun;
  int32_t firstRow;  // of its own runs: they go on in every row from there to their last
  int32_t parent;    // towards the root; a root is its own
  int32_t next;      // the next block of the root's chain, which begins at the root; -1: none
  int32_t tail;      // in a root: the last block of its chain
  ValueRange values;
  bool isOpen;         // it has a run in the last row, and may get more
  bool grows;          // in a root: a block of its chain is open
  EarlyPoints* early;  // of rows that were let go; null: it has no run there
};

// Labels the connected components of an image, diagonals included, run by run. Holds the runs of
// the rows that were not let go yet, with the blocks they belong to, in the order in which they
// were met: row by row from the top, left to right. A block is named by its place in `blocks`, the
// order in which they were opened.
class BlockGrowth {
 public:
  BlockGrowth() = default;
  BlockGrowth(const BlockGrowth&) = delete;
  BlockGrowth& operator=(const BlockGrowth&) = delete;
  ~BlockGrowth();

  // Begins with no run, for `rows` rows from row `firstRow` down. False when there is no memory.
  [[nodiscard]] bool Begin(int32_t firstRow, size_t rows);

  // Whether so many runs are held that it is time to let rows go.
  bool isFull() const;

  // Marks the blocks that the next row may touch, and the roots of those.
  void MarkOpen();

  // Lets all rows go, but for the last one when its blocks are marked: with it stay the blocks of
  // the growing roots, whose other runs are in their early points, without those whose own early
  // points are null and which are not open. The marks are taken away.
  void LetRowsGo();

  // Makes room for the next row's runs: `mostRuns` of them and as many blocks. False when there is
  // no memory or no number for another run.
  [[nodiscard]] bool ReserveRow(size_t mostRuns);

  // Where the next row's runs go.
  PixelRun* nextRuns() { return runs_.data() + runCount_; }

  // Takes the `count` runs at nextRuns() as those of the next row and gives each its block: that of
  // the leftmost run above that it touches, diagonally too, or a new one. `values` are taken into
  // the block of every run.
  void LinkRow(size_t count, const ValueRange& values);

  // Takes values into the block of run `r`.
  void WidenValues(size_t r, const ValueRange& values) {
    Widen(&blocks_[static_cast<size_t>(runs_[r].block)].values, values);
  }

  // The early points of block `b`, made where it has none; null when there is no memory.
  EarlyPoints* NeedEarly(int32_t b);
  void DropEarly(int32_t b);
  // Takes the block behind `b` out of its chain.
  void DropNext(int32_t b, int32_t root);

  // The surviving block that block `b` was merged into; b itself if it survives. Union-find with
  // path halving.
  int32_t Root(int32_t b);

  int32_t firstRow() const { return firstRow_; }
  size_t rowCount() const { return rowCount_; }  // rows linked
  // Runs RowStart(i) .. RowStart(i + 1) - 1 are those of row firstRow() + i.
  size_t RowStart(size_t i) const { return rowStarts_[i]; }
  const PixelRun& run(size_t r) const { return runs_[r]; }
  size_t runCount() const { return runCount_; }

  int32_t blockCount() const { return static_cast<int32_t>(blockCount_); }
  const GrowingBlock& block(int32_t b) const { return blocks_[static_cast<size_t>(b)]; }
  // Where the last row's runs begin.
  size_t lastRowStart() const { return rowCount_ > 0 ? rowStarts_[rowCount_ - 1] : 0; }
  // Blocks opened in all, merged ones and those of rows that were let go too.
  int64_t openedCount() const { return opened_; }
  // How many there will be if the rows to come are like those linked; openedCount() where that
  // can't be told yet.
  int64_t ExpectedCount() const;
  // Whether the last run of all opened a block of its own.
  bool lastRunOpened() const { return lastRunOpened_; }

 private:
  void Open(size_t r, const ValueRange& values);
  void Add(size_t r, int32_t b, const ValueRange& values);
  void Merge(int32_t survivor, int32_t other);
  int32_t NumberKept();
  void RenameKept();
  void MoveKept(int32_t kept);
  void RelinkLastRow();

  int32_t firstRow_ = 0;
  int32_t beginRow_ = 0;
  size_t rowCount_ = 0;
  frame::ScratchArray<size_t> rowStarts_;
  frame::ScratchArray<PixelRun> runs_;
  frame::ScratchArray<GrowingBlock> blocks_;
  size_t runCount_ = 0;
  size_t blockCount_ = 0;
  int32_t firstKept_ = -1;  // while rows are let go: the first block that stays
  int64_t opened_ = 0;
  bool lastRunOpened_ = false;
};

}  // namespace vorlanepic::omr
