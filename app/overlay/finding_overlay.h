// Draws what the page engine found.
#pragma once

#include <vector>

#include "app/files/page.h"
#include "app/files/pix_owner.h"
#include "app/overlay/overlay_canvas.h"
#include "vorlane/vorlane.h"

namespace vorlane::overlay {

// The outline of what is kept, each side in the colour of what became of its evidence. Nothing for
// a refused page.
void DrawFoundOutline(OverlayCanvas* canvas, const vorlane_finding& finding);

// The turn, the reasons and each piece of evidence.
void AddFindingCaption(const vorlane_finding& finding, std::vector<CaptionLine>* lines);

// The way up of a page with these corners, clockwise from its upper left, and a label beside it.
void DrawWayUp(OverlayCanvas* canvas, const std::vector<Place>& corners, const std::string& label,
               Colour colour);

// The page with the finding and its caption. Throws FileError without memory.
files::PixPtr DrawFindingOverlay(const files::Page& page, const vorlane_finding& finding);

}  // namespace vorlane::overlay
