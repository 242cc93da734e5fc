// What a failed call means, in words for people.
#pragma once

#include <string>

#include "host/turn_outcome.h"

namespace vorlanepic::host {

// Why the outcome's call failed: the meaning of its status at the stage that it reached.
std::string FailureWords(const TurnOutcome& outcome);

}  // namespace vorlanepic::host
