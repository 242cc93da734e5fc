// Chooses the reference bar among the dark blocks of a mark sheet and samples its edges.
#pragma once

#include <cstdint>

#include "omr/bar_records.h"
#include "vorlanepic/vorlanepic.h"

namespace vorlanepic::omr {

// Judges every block of `set` that is long enough into records->bars and returns the one that is
// the reference bar: the thickest that passes every test. Null when there is none and when there is
// no memory.
const BlockRec* SelectReferenceBar(const BlockSetRec& set, const BarLimits& limits,
                                   BarRecords* records);

// Samples the edges of `bar` into records->samples and tells in records->isTall which way it runs.
// False when there is no memory.
bool TraceBarEdges(const BlockRec& bar, BarRecords* records);

}  // namespace vorlanepic::omr
