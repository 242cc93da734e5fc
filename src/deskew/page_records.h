// What the stages of an image service found, for whoever draws or judges it.
#pragma once

#include <cstdint>

#include "analysis/border_records.h"
#include "analysis/corner_solver.h"
#include "deskew/content_bounds.h"
#include "deskew/skew_vote.h"

namespace vorlanepic::deskew {

// How far a driver came; each stage was reached with all earlier ones done.
enum class PageStage : int32_t {
  kNothing,
  kThreshold,
  kBand,
  kRowScan,
  kColumnScan,
  kEdges,    // pruned rotation
  kCorners,  // pruned rotation
  kVote,     // deskew-crop
  kContent,  // deskew-crop and line-guided: content rectangle of the source
  kTurned,   // the page was turned
  kCropped,  // deskew-crop and line-guided: the turned page was cut to its content
};

// The scratch of one call, the caller's. Empty when a driver gets it, but for the segments of
// `extremes`, which may be those of an earlier call.
struct PageRecords {
  PageStage stage = PageStage::kNothing;  // the last stage that succeeded
  int32_t threshold = 0;                  // in effect: given or estimated
  analysis::GreyBand levels{};
  frame::PixelRect band{};
  analysis::ExtremePoints extremes{};
  analysis::BorderTraces traces;

  // Pruned rotation.
  analysis::EdgeOrigin edgeOrigin;
  analysis::DocumentEdges edges;
  analysis::DocumentGeometry geometry;

  // Deskew-crop: votes in the order left, right, top, bottom.
  BorderVote votes[4];
  int32_t bestBorder = -1;

  // Deskew-crop and line-guided.
  frame::PixelRect content{};        // in the source
  frame::PixelRect turnedContent{};  // in the turned image
  int32_t turnedWidth = 0;           // size of the turned image, before the cut
  int32_t turnedHeight = 0;
  double degrees = 0.0;  // the turn
};

}  // namespace vorlanepic::deskew
