// Draws what the search for a sheet's reference bar found.
#pragma once

#include <vector>

#include "app/overlay/overlay_canvas.h"
#include "omr/bar_records.h"

namespace vorlane::overlay {

// The sheet's area, every candidate with the test that rejected it, the chosen bar, its edge
// samples and fitted edges. Records in the page's own row order.
void DrawBar(OverlayCanvas* canvas, const vorlanepic::omr::BarRecords& bar);

// What the drawing's colours mean, and the numbers of the candidates.
void AddBarCaption(const vorlanepic::omr::BarRecords& bar, std::vector<CaptionLine>* lines);

}  // namespace vorlane::overlay
