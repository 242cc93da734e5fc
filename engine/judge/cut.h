// What of the turned page to keep.
#pragma once

#include <cstdint>

#include "engine/evidence/ink.h"
#include "engine/evidence/page_levels.h"
#include "engine/evidence/paper_sides.h"
#include "engine/judge/decision.h"
#include "engine/judge/finding.h"

namespace vorlane::judge {

struct Cut {
  bool isBelieved = false;
  CutRect rect;
  int32_t sidesUnseen = 0;    // bounded by where the light ends
  int32_t sidesOffFrame = 0;  // bounded by the picture's own edge
  // Shares of the picture's longer side: the most by which light moved a side's line out, and how
  // far light of something else goes on beyond a side.
  double widened = 0.0;
  double lightOutside = 0.0;
  double inkOutside = 0.0;  // share of all ink; 0 where the cut is not believed
};

// Bounds the page of `decision` by its sides, moved outwards by `outwards` pixels. A side that was
// not seen, and one beyond which the page's light goes on, ends where that ends.
//
// False when there is no memory.
bool FindCut(const evidence::PageLevels& page, const evidence::PaperSides& sides,
             const evidence::InkPicture& ink, const Decision& decision, double outwards, Cut* cut);

// The whole picture, turned by `degrees`.
CutRect WholePicture(double degrees, int32_t width, int32_t height);

}  // namespace vorlane::judge
