// Turns the blocks of a marking call into the records of a host's block set.
#pragma once

#include <cstdint>

#include "omr/block_growth.h"
#include "vorlanepic/vorlanepic.h"

namespace vorlanepic::omr {

// Truncated length, in pixels, of the diagonal of a width x height box.
int32_t BoxDiagonal(int32_t width, int32_t height);

// Adds the blocks of one marking call to a host's set. The set's count stays as it is until all is
// done, so that it holds the blocks that it held before when the call fails.
class BlockHandBack {
 public:
  //   shortestDiagonal  blocks whose BoxDiagonal is shorter are left out; 0 keeps all
  //   set               its count is not negative, and 0 when it has no array
  BlockHandBack(int32_t shortestDiagonal, BlockSetRec* set);
  BlockHandBack(const BlockHandBack&) = delete;
  BlockHandBack& operator=(const BlockHandBack&) = delete;
  // Without Finish the points added are released.
  ~BlockHandBack();

  // Adds the surviving blocks of `growth`, in the order in which they were opened, with their
  // points. No run is added to them any more. False when there is no memory.
  [[nodiscard]] bool Add(const BlockGrowth& growth);

  // Makes the whole set finished: a block that an earlier call left unfinished is finished or, when
  // it was merged, released. False when there is no memory.
  [[nodiscard]] bool Finish();

 private:
  int64_t GrownCapacity() const;
  bool Reserve(int64_t capacity);

  BlockSetRec* set_;
  int32_t shortestDiagonal_;
  int64_t reserved_;            // records that the set's array has room for
  int32_t end_;                 // behind the records added
  int64_t opened_ = 0;          // blocks opened in all, merged ones too
  bool lastRunOpened_ = false;  // whether the last run of all opened a block of its own
};

}  // namespace vorlanepic::omr
