// Throws the segments that do not lie on a common straight line out of an edge.
#pragma once

#include <cstdint>

#include "analysis/border_records.h"
#include "frame/settings.h"

namespace vorlanepic::analysis {

// Judges whether a segment's mean is in line with its neighbours' means, into *verdict, which is
// left alone where the neighbours lie level or upright to each other.
//
//   source  kWholeSides: it is in line when it lies within SegmentMaxGap of both neighbours across
//           the edge; kBeyondExtremes: when it does not lie on the inner side of their chord
//   code    the edge's; E1 and E3 run along x, E2 and E4 along y
//
// Returns STATUS_OK, or BAD_ARGUMENT for equal neighbours.
int32_t JudgeSegment(const frame::Settings& settings, frame::PixelPoint previous,
                     frame::PixelPoint next, frame::PixelPoint tested, EdgeSource source,
                     EdgeCode code, bool* verdict);

// Keeps in `list` the segments that lie on its common line, in order, each marked used.
// Arguments as above.
//
// Returns STATUS_OK; EDGE_NOT_FOUND when none is left or they scatter; ANGLE_NOT_FOUND when a line
// cannot be fitted; OUT_OF_MEMORY; BAD_ARGUMENT for an empty list or equal
// neighbours.
int32_t SelectSegments(const frame::Settings& settings, EdgeSource source, EdgeCode code,
                       SegmentList* list);

}  // namespace vorlanepic::analysis
