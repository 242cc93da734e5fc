// Draws what the search for a sheet's reference bar found.
#pragma once

#include <string>
#include <vector>

#include "host/overlay_canvas.h"
#include "omr/bar_records.h"

namespace vorlanepic::host {

// The sheet's area, every candidate with the test that rejected it, the chosen bar, its edge
// samples and fitted edges. Records in the page's own row order.
void DrawBar(OverlayCanvas* canvas, const BarRecords& bar);

// What the drawing's colours mean, and the numbers of the candidates.
void AddBarCaption(const BarRecords& bar, std::vector<CaptionLine>* lines);

// Why the search ended without an angle, in words.
std::string BarFailureWords(const BarRecords& bar);

// The test that rejected a candidate, or "chosen".
const char* BarVerdictName(BarVerdict verdict);

}  // namespace vorlanepic::host
