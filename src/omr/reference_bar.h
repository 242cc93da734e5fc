// Chooses the reference bar among the dark blocks of a mark sheet and samples its edges.
#pragma once

#include <cstdint>

#include "omr/bar_records.h"
#include "vorlanepic/vorlanepic.h"

namespace vorlanepic::omr {

// What a reference bar has to measure, in pixels.
struct BarLimits {
  int32_t minLength;     // along the diagonal of its bounding box; its thickness is sampled every
                         // twentieth of that
  int32_t minThickness;  // of the mean thickness, both inclusive
  int32_t maxThickness;
};

// Judges every block of `set` that is long enough into records->bars and returns the one that is
// the reference bar: the thickest that passes every test. Null when there is none and when there is
// no memory.
const BlockRec* SelectReferenceBar(const BlockSetRec& set, const BarLimits& limits,
                                   BarRecords* records);

// Samples the edges of `bar` into records->samples and tells in records->isTall which way it runs.
// False when there is no memory.
bool TraceBarEdges(const BlockRec& bar, BarRecords* records);

}  // namespace vorlanepic::omr
