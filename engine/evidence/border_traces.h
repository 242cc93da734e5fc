// The core's border scan as the engine asks for it: the raw traces of the four sides of whatever is
// light at a threshold.
#pragma once

#include <array>
#include <cstdint>

#include "analysis/border_records.h"
#include "engine/evidence/page_levels.h"

namespace vorlane::evidence {

// Traces what is at or above `threshold` from the frame inwards, up to the column scan.
//
// Returns STATUS_OK; BORDER_NOT_FOUND when nothing is; OUT_OF_MEMORY.
int32_t TraceBorders(const PageLevels& page, uint8_t threshold,
                     vorlanepic::analysis::BorderTraces* traces);

// Lets the traced borders vote for an angle, *degrees by which the page lies turned clockwise.
//
// Returns STATUS_OK; ANGLE_NOT_FOUND when they give none; OUT_OF_MEMORY.
int32_t LetBordersVote(const vorlanepic::analysis::BorderTraces& traces, double* degrees);

}  // namespace vorlane::evidence
