// How sharply a side of the page stands out.
#pragma once

#include "engine/evidence/page_levels.h"
#include "engine/evidence/side_line.h"

namespace vorlane::evidence {

// Writes line->outside, the level 2 to 4 pixels outside the line, and line->contrast, by how much
// it is lighter as far inside: the medians of 64 places between the line's ends. Both are 0 where
// all of them lie at the picture's edge.
void MeasureContrast(const PageLevels& page, Side side, SideLine* line);

}  // namespace vorlane::evidence
