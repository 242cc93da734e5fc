// The part of the page that is printed on.
#pragma once

#include "engine/evidence/ink.h"
#include "engine/evidence/page_levels.h"
#include "engine/judge/finding.h"

namespace vorlane::judge {

// Narrows `cut` of the page that lies turned clockwise by `degrees` to the print in it, and a
// little around it. False, and *cut as it was, where there is too little print, or no memory.
bool NarrowToContent(const evidence::PageLevels& page, const evidence::InkPicture& ink,
                     double degrees, CutRect* cut);

}  // namespace vorlane::judge
