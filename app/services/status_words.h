// What a failed call means, in words for people.
#pragma once

#include <string>

#include "app/services/turn_outcome.h"

namespace vorlane::services {

// Why the outcome's call failed: the meaning of its status at the stage that it reached.
std::string FailureWords(const TurnOutcome& outcome);

}  // namespace vorlane::services
