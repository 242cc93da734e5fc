// The public codes of what the engine reports.
#pragma once

#include <cstdint>

#include "engine/judge/finding.h"

namespace vorlane::api {

int32_t CodeOf(judge::Reason reason);

}  // namespace vorlane::api
