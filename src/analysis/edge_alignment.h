// Brings the four fitted edge lines into the shape of a document: repairs a line that could not be
// fitted, makes opposite edges parallel, or lays the edges through the extreme points.
#pragma once

#include <cstdint>

#include "analysis/border_records.h"

namespace vorlanepic::analysis {

// Which pair of opposite edges runs along x and may fail to be fitted.
enum class SolverPath : int32_t {
  kX,  // E1 and E3
  kY,  // E2 and E4
};

// The path that the border analysis and the extreme points call for.
SolverPath ChoosePath(const ExtremePoints& extremes);

// Fits a line to the points of every edge, whose point totals are up to date. A line of the
// tolerated pair that cannot be fitted keeps kind 4. Returns STATUS_OK or the failing fit's status.
int32_t FitEdges(SolverPath path, DocumentEdges* edges);

// Aligns the four lines. Sets ExtremeAnchorFlag to 1.0 when both tolerated lines were not fitted;
// with the flag at 1.0 the lines pass through the extreme points, with 0.0 through their own.
//
//   cornerOption  with the flag at 0.0, the edges move outwards by twice this many pixels
//   straightness  0: a repaired edge lies on the image's frame instead of an extreme point
//   height        of the image, in rows
//
// Returns STATUS_OK, or BORDER_NOT_FOUND when the lines are not those of a document.
int32_t AlignEdges(SolverPath path, const ExtremePoints& extremes, int32_t cornerOption,
                   int32_t straightness, int32_t height, DocumentEdges* edges);

}  // namespace vorlanepic::analysis
