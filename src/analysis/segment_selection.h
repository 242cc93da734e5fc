// Throws the segments that do not lie on a common straight line out of an edge.
#pragma once

#include <cstdint>

#include "analysis/border_records.h"

namespace vorlanepic::analysis {

// Judges whether a segment's mean is in line with its neighbours' means: 1 (keep) or 0 in *verdict,
// which is left alone where the neighbours lie level or upright to each other.
//
//   straightness  0: it is in line when it lies within SegmentMaxGap of both neighbours across the
//                 edge; 1: when it does not lie on the inner side of their chord
//   code          1..4, the edge's; 1 and 3 run along x, 2 and 4 along y
//
// Returns STATUS_OK; BAD_ARGUMENT for a null pointer, a value out of range or equal neighbours.
int32_t JudgeSegment(EdgePoint previous, EdgePoint next, EdgePoint tested, int32_t straightness,
                     int32_t code, int32_t* verdict);

// Keeps in `list` the segments that lie on its common line, in order, each marked used.
// Arguments as above.
//
// Returns STATUS_OK; EDGE_NOT_FOUND when none is left or they scatter; ANGLE_NOT_FOUND when a line
// cannot be fitted; OUT_OF_MEMORY; BAD_ARGUMENT for an empty list or a value out of range.
int32_t SelectSegments(SegmentList* list, int32_t straightness, int32_t code);

}  // namespace vorlanepic::analysis
