// What the page engine's judgement of a service's result comes to, in words.
#pragma once

#include "app/services/turn_outcome.h"

namespace vorlane::services {

// Holds an outcome of status 0 on `image`, the page as the service saw it, against the outcome's
// finding.
Verdict VerdictOn(const TurnOutcome& outcome, const ImageRec& image);

// Whether an outcome is better kept than another: success first, then confidence.
bool IsBetter(const TurnOutcome& a, const TurnOutcome& b);

}  // namespace vorlane::services
