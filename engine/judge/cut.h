// What of the turned page to keep.
#pragma once

#include "engine/evidence/ink.h"
#include "engine/evidence/page_levels.h"
#include "engine/evidence/paper_sides.h"
#include "engine/judge/decision.h"
#include "engine/judge/finding.h"

namespace vorlane::judge {

struct Cut {
  bool isSure = false;
  CutRect rect;
  int32_t sidesUnseen = 0;    // bounded by where the light ends
  int32_t sidesOffFrame = 0;  // bounded by the picture's own edge
  double inkOutside = 0.0;    // shares
  double lightOutside = 0.0;
};

// Bounds the page of `decision` by its sides.
Cut FindCut(const evidence::PageLevels& page, const evidence::PaperSides& sides,
            const evidence::InkPicture& ink, const Decision& decision, double outwards);

// The whole picture, turned by `degrees`.
CutRect WholePicture(double degrees, int32_t width, int32_t height);

}  // namespace vorlane::judge
