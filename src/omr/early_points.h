// The points of a block whose rows are let go before it is finished.
#pragma once

#include <cstdint>

#include "frame/scratch.h"
#include "omr/block_total.h"
#include "vorlanepic/vorlanepic.h"

namespace vorlanepic::omr {

// The points of one block's own runs and behind them, once it can take no more of its own, those of
// blocks that were merged behind it.
struct EarlyPoints {
  BlockTotal own;
  BlockTotal merged;
  int32_t place = -1;  // of the block's record in the set; -1: it has none yet
  size_t pointCount = 0;
  frame::ScratchArray<BlockPoint> points;
  size_t areaCount = 0;
  frame::ScratchArray<uint32_t> areas;  // of the merged blocks, one by one

  // Makes room for `more` points and those that WriteRun may overwrite behind them. False when
  // there is no memory.
  [[nodiscard]] bool Reserve(uint64_t more);

  // Adds the points of the block that was merged next, and of those behind it. False when there is
  // no memory.
  [[nodiscard]] bool Append(const EarlyPoints& next);

  // All of it.
  BlockTotal Total() const;
};

}  // namespace vorlanepic::omr
