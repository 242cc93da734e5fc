// The lists that a block set owns.
#pragma once

#include "vorlanepic/vorlanepic.h"

namespace vorlanepic::omr {

// Releases all blocks of `set` with their lists and empties the record. A set without blocks stays
// as it is.
void ReleaseBlocks(BlockSetRec* set);

}  // namespace vorlanepic::omr
