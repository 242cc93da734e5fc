// Turns the blocks of a marking call into the records of a host's block set.
#pragma once

#include <cstdint>

#include "omr/block_growth.h"
#include "vorlanepic/vorlanepic.h"

namespace vorlanepic::omr {

// Truncated length, in pixels, of the diagonal of a width x height box.
int32_t BoxDiagonal(int32_t width, int32_t height);

// Adds the blocks of one marking call to a host's set. Only when all is done, or given up, does the
// set's count tell of them.
class BlockHandBack {
 public:
  //   shortestDiagonal  blocks whose BoxDiagonal is shorter are left out; 0 keeps all
  //   set               its count is not negative, and 0 when it has no array
  BlockHandBack(int32_t shortestDiagonal, BlockSetRec* set);
  BlockHandBack(const BlockHandBack&) = delete;
  BlockHandBack& operator=(const BlockHandBack&) = delete;
  // Without Finish the set holds the blocks that it held before, as they were, and behind them
  // those that were finished.
  ~BlockHandBack();

  // Takes over the blocks of `growth` that do not grow any more, in the order in which they were
  // opened and with their points, and of the others the points of all rows but the last; then lets
  // the rows go. False when there is no memory.
  [[nodiscard]] bool HandOver(BlockGrowth* growth);

  // Makes the whole set finished: a block that an earlier call left unfinished is finished or, when
  // it was merged, released. False when there is no memory.
  [[nodiscard]] bool Finish();

 private:
  int64_t GrownCapacity() const;
  bool Reserve(int64_t capacity);
  bool TakeFinished(int32_t root, BlockGrowth* growth);
  bool TakeGrown(int32_t root, BlockGrowth* growth);
  bool PutAside(int32_t root, BlockGrowth* growth);
  int32_t NewPlace();
  bool Keep(int64_t pointCapacity, int32_t place);
  void DropMergedPlaces(BlockGrowth* growth);
  void DropPlaces();

  BlockSetRec* set_;
  int32_t shortestDiagonal_;
  int64_t reserved_;        // records that the set's array has room for
  int32_t end_;             // behind the records added
  bool hasPlaces_ = false;  // whether some of those are places of no block, or of none yet
  bool isFinished_ = false;
  int64_t opened_ = 0;          // blocks opened in all, merged ones too
  bool lastRunOpened_ = false;  // whether the last run of all opened a block of its own
};

}  // namespace vorlanepic::omr
