// Draws over a page what a service found on it.
#pragma once

#include "host/page.h"
#include "host/pix_owner.h"
#include "host/turn_outcome.h"

namespace vorlanepic::host {

// The page with everything that the stages found up to where they came, and a caption. Throws
// FileError without memory.
PixPtr DrawOverlay(const Page& page, const TurnOutcome& outcome);

}  // namespace vorlanepic::host
