// From border traces to document edges: each edge keeps the segments that lie on one straight line.
#pragma once

#include <cstdint>

#include "analysis/border_records.h"
#include "vorlanepic/vorlanepic.h"

namespace vorlanepic::analysis {

// Fills the four edges from the four traces.
//
//   straightness  receives 0 when the two tested sides are straight and whole traces were taken, 1
//                 when each trace gave only the part beyond its extreme point
//   edges         empty; on failure they keep what they had gathered
//
// Returns STATUS_OK; ANGLE_NOT_FOUND when a line cannot be fitted; EDGE_NOT_FOUND when an edge
// keeps no segment or its segments scatter; BAD_ARGUMENT for a null pointer or too few segments;
// OUT_OF_MEMORY; or the image library's code. May set EdgeArrangement.
int32_t BuildEdges(const ImageRec* image, const ExtremePoints* extremes, int32_t* straightness,
                   const BorderTraces* traces, DocumentEdges* edges);

}  // namespace vorlanepic::analysis
