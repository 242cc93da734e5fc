// Draws over a page what a service found on it.
#pragma once

#include "app/files/page.h"
#include "app/files/pix_owner.h"
#include "app/services/turn_outcome.h"

namespace vorlane::overlay {

// The page with everything that the stages found up to where they came, and a caption. Throws
// FileError without memory.
files::PixPtr DrawOverlay(const files::Page& page, const services::TurnOutcome& outcome);

}  // namespace vorlane::overlay
