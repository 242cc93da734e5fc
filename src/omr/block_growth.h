// The blocks of one marking call while its rows are linked.
#pragma once

#include <cstddef>
#include <cstdint>

#include "frame/scratch.h"
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
};

// The runs of an image with the blocks they belong to, in the order in which they were met: row by
// row from the top, left to right. A block is named by its place in `blocks`, the order in which
// they were opened.
class BlockGrowth {
 public:
  // Begins with no run, for `rows` rows from row `firstRow` down. False when there is no memory.
  [[nodiscard]] bool Begin(int32_t firstRow, size_t rows);

  // Forgets the rows linked so far and goes on behind them. Nothing that begins later can touch
  // them when the last of them is empty.
  void Restart();

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

  // The surviving block that block `b` was merged into; b itself if it survives.
  int32_t Root(int32_t b);

  int32_t firstRow() const { return firstRow_; }
  size_t rowCount() const { return rowCount_; }  // rows linked
  // Runs RowStart(i) .. RowStart(i + 1) - 1 are those of row firstRow() + i.
  size_t RowStart(size_t i) const { return rowStarts_[i]; }
  const PixelRun& run(size_t r) const { return runs_[r]; }

  int32_t blockCount() const { return static_cast<int32_t>(blockCount_); }
  const GrowingBlock& block(int32_t b) const { return blocks_[static_cast<size_t>(b)]; }
  // Whether the last run of all opened a block of its own; there is a run.
  bool lastRunOpened() const {
    const size_t last = runCount_ - 1;
    return static_cast<size_t>(block(runs_[last].block).firstRun) == last;
  }

 private:
  // How many there will be in all if the rows to come are like those linked; 0 if that can't be
  // told.
  size_t Expected(size_t count) const;
  void Open(size_t r, const ValueRange& values);
  void Add(size_t r, int32_t b, const ValueRange& values);
  void Merge(int32_t survivor, int32_t other);

  int32_t firstRow_ = 0;
  size_t rowCount_ = 0;
  frame::ScratchArray<size_t> rowStarts_;
  frame::ScratchArray<PixelRun> runs_;
  frame::ScratchArray<GrowingBlock> blocks_;
  size_t runCount_ = 0;
  size_t blockCount_ = 0;
};

}  // namespace vorlanepic::omr
