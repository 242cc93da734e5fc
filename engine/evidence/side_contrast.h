// How sharply a side of the page stands out.
#pragma once

#include "engine/evidence/page_levels.h"
#include "engine/evidence/side_line.h"

namespace vorlane::evidence {

// The levels by which the picture is lighter 2 to 4 pixels inside `line` than as far outside: the
// median of 64 places between its ends. 0 where all of them lie at the picture's edge.
double ContrastOf(const PageLevels& page, Side side, const SideLine& line);

}  // namespace vorlane::evidence
