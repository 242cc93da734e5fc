// The order in which selection sort leaves records, found without its quadratic cost.
#pragma once

#include <cstddef>
#include <cstdint>

#include "vorlanepic/vorlanepic.h"

namespace vorlanepic::omr {

// Sorts `blocks` in place, ascending by the field `key`, into exactly the order that selection sort
// gives: for each place in turn the first of the smallest keys from there on is exchanged with the
// record that stands there, so records of equal key may change their order. n log n steps, or
// selection sort itself when there is no memory for them.
void SelectionSort(BlockRec* blocks, int32_t count, int32_t BlockRec::*key);

// Selection sort as it is described, without further memory.
void SelectionSortPlain(BlockRec* blocks, int32_t count, int32_t BlockRec::*key);

}  // namespace vorlanepic::omr
