// From border traces to document edges: each edge keeps the segments that lie on one straight line.
#pragma once

#include <cstdint>

#include "analysis/border_records.h"
#include "frame/settings.h"
#include "vorlanepic/vorlanepic.h"

namespace vorlanepic::analysis {

// Fills the four edges from the four traces.
//
//   source  receives what of the traces was taken: whole sides when the two tested ones are
//   straight edges   empty; on failure they keep what they had gathered
//
// Returns STATUS_OK; ANGLE_NOT_FOUND when a line cannot be fitted; EDGE_NOT_FOUND when an edge
// keeps no segment or its segments scatter; BAD_ARGUMENT for too few segments; OUT_OF_MEMORY; or
// the image library's code.
int32_t BuildEdges(const frame::Settings& settings, const ImageRec& image,
                   const ExtremePoints& extremes, const BorderTraces& traces, EdgeOrigin* origin,
                   DocumentEdges* edges);

}  // namespace vorlanepic::analysis
