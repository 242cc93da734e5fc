// The print that a cut would lose.
#pragma once

#include <array>
#include <cstdint>

#include "engine/evidence/ink.h"
#include "engine/evidence/page_levels.h"
#include "engine/evidence/side_line.h"
#include "engine/judge/finding.h"
#include "engine/judge/page_axes.h"

namespace vorlane::judge {

// Shares of all print that lie beyond each side of the cut, 0..1; at a corner, beyond one of the
// two. Print is ink with light around it, at `threshold` or above: no noise or dust of a dark
// surround.
std::array<double, evidence::kSides> SharesBeyond(const evidence::PageLevels& page,
                                                  const evidence::InkPicture& ink,
                                                  const PageAxes& axes, uint8_t threshold,
                                                  const CutRect& rect);

}  // namespace vorlane::judge
