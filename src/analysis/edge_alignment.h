// Brings the four fitted edge lines into the shape of a document: repairs a line that could not be
// fitted, makes opposite edges parallel, or lays the edges through the extreme points.
#pragma once

#include <cstdint>

#include "analysis/border_records.h"
#include "frame/settings.h"

namespace vorlanepic::analysis {

// Which pair of opposite edges runs along x and may fail to be fitted.
enum class SolverPath : int32_t {
  kX,  // E1 and E3
  kY,  // E2 and E4
};

// The path that the border method and the extreme points call for.
SolverPath ChoosePath(const frame::Settings& settings, const ExtremePoints& extremes,
                      Arrangement arrangement);

// Fits a line to the points of every edge, whose point totals are up to date. A line of the
// tolerated pair that cannot be fitted keeps the kind kNotFitted. Returns STATUS_OK or the failing
// fit's status.
int32_t FitEdges(SolverPath path, DocumentEdges* edges);

// Whether neither line of the tolerated pair was fitted. The other lines are then laid through the
// extreme points, whatever the settings say.
bool IsPairUnfitted(SolverPath path, const DocumentEdges& edges);

// Aligns the four lines. With ExtremeAnchorFlag at 1.0, or a pair unfitted, the lines pass through
// the extreme points, with 0.0 through their own.
//
//   cornerOption  where the lines pass through their own points, they move outwards by twice this
//                 many pixels
//   source        kWholeSides: a repaired edge lies on the image's frame instead of an extreme
//   point height        of the image, in rows
//
// Returns STATUS_OK, or BORDER_NOT_FOUND when the lines are not those of a document.
int32_t AlignEdges(const frame::Settings& settings, SolverPath path, const ExtremePoints& extremes,
                   int32_t cornerOption, EdgeSource source, int32_t height, DocumentEdges* edges);

}  // namespace vorlanepic::analysis
