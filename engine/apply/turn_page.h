// Makes pages with the core's rotation: the one place of this room that knows its records.
#pragma once

#include <array>
#include <cstdint>

#include "engine/apply/workspace.h"
#include "rotate/rotate_image.h"
#include "vorlane/vorlane.h"

namespace vorlane::apply {

// Turns `page` into the rows of `result`.
//
//   page     passes CheckImage; read where it lies, but for 32 bits
//   turn     of PlanResult for this page
//   fill     of FillBytes for the page's format
//   threads  1..kMostShares, the caller's included
//   result   has room for the turn's output; its sizes are not looked at
//
// Returns VORLANE_OK or VORLANE_NO_MEMORY; the result is then untouched.
vorlane_status TurnPage(const vorlane_image& page, const vorlanepic::rotate::Turn& turn,
                        const std::array<uint8_t, 3>& fill, int32_t threads, Workspace& space,
                        const vorlane_result& result);

}  // namespace vorlane::apply
