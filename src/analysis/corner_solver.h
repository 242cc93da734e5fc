// From document edges to the geometry of the turn.
#pragma once

#include <cstdint>

#include "analysis/border_records.h"
#include "rotate/row_spans.h"
#include "vorlanepic/vorlanepic.h"

namespace vorlanepic::analysis {

// Corners of the document: cAB is where the edges with codes A and B cross.
struct DocumentCorners {
  EdgePoint c14;
  EdgePoint c12;
  EdgePoint c43;
  EdgePoint c23;
};

// What the solver delivers. Fields are written as they are computed, also when a later step fails.
struct DocumentGeometry {
  DocumentCorners corners{};
  EdgePoint center{};
  double angle = 0.0;    // radians, 0 up to 2 pi: the turn that makes the document upright
  int32_t outWidth = 0;  // size of the upright document in pixels
  int32_t outHeight = 0;
  rotate::RowSpans spans;  // the document's columns in every row of the image
};

// Solves the geometry from the four edges.
//
//   cornerOption  every edge moves outwards by twice this many pixels in x and y
//   edges         their lines are fitted here
//
// Returns STATUS_OK; BORDER_NOT_FOUND when the geometry is not a document; BAD_ARGUMENT for a null
// pointer, an edge without segments or lines that do not cross; OUT_OF_MEMORY for the spans; the
// status of a failed line fit; or the image library's code. Sets ExtremeAnchorFlag to 1.0 when two
// opposite edges cannot be fitted.
int32_t SolveCorners(const ImageRec* image, int32_t cornerOption, const ExtremePoints* extremes,
                     int32_t straightness, DocumentEdges* edges, DocumentGeometry* geometry);

}  // namespace vorlanepic::analysis
