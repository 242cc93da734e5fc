// From document edges to the geometry of the turn.
#pragma once

#include <cstdint>

#include "analysis/border_records.h"
#include "frame/settings.h"
#include "rotate/row_spans.h"
#include "vorlanepic/vorlanepic.h"

namespace vorlanepic::analysis {

// Corners of the document: cAB is where edges EA and EB cross.
struct DocumentCorners {
  frame::PixelPoint c14;
  frame::PixelPoint c12;
  frame::PixelPoint c43;
  frame::PixelPoint c23;
};

// What the solver delivers. Fields are written as they are computed, also when a later step fails.
struct DocumentGeometry {
  DocumentCorners corners{};
  frame::PixelPoint center{};
  double angle = 0.0;    // radians, 0 up to 2 pi: the turn that makes the document upright
  int32_t outWidth = 0;  // size of the upright document in pixels
  int32_t outHeight = 0;
  bool isPairUnfitted = false;  // two opposite edges could not be fitted: the others were laid
                                // through the extreme points
  rotate::RowSpans spans;       // the document's columns in every row of the image
};

// Solves the geometry from the four edges.
//
//   cornerOption  unless the edges pass through the extreme points, each moves outwards by twice
//                 this many pixels in x and y
//   origin        how the edges came from the traces
//   edges         their lines are fitted here
//
// Returns STATUS_OK; BORDER_NOT_FOUND when the geometry is not a document; BAD_ARGUMENT for an edge
// without segments or lines that do not cross; OUT_OF_MEMORY for the spans; the status of a failed
// line fit; or the image library's code.
int32_t SolveCorners(const frame::Settings& settings, const ImageRec& image, int32_t cornerOption,
                     const ExtremePoints& extremes, const EdgeOrigin& origin, DocumentEdges* edges,
                     DocumentGeometry* geometry);

}  // namespace vorlanepic::analysis
