// Turns the blocks of a marking call into the records of a host's block set.
#pragma once

#include <cstdint>

#include "omr/block_growth.h"
#include "vorlanepic/vorlanepic.h"

namespace vorlanepic {

// Truncated length, in pixels, of the diagonal of a width x height box.
int32_t BoxDiagonal(int32_t width, int32_t height);

// Adds the surviving blocks of `growth`, in the order in which they were opened and with their
// points, to those that `set` holds, and makes the whole set finished: a block that an earlier call
// left unfinished is finished or, when it was merged, released.
//
//   shortestDiagonal  blocks whose BoxDiagonal is shorter are left out
//   set               its count is not negative, and 0 when it has no array
//
// Returns STATUS_OK, or OUT_OF_MEMORY; the set then holds the blocks that it held before.
int32_t HandBack(const BlockGrowth& growth, int32_t shortestDiagonal, BlockSetRec* set);

}  // namespace vorlanepic
