// Tells of each piece of evidence what it says and what became of it.
#pragma once

#include "engine/judge/decision.h"
#include "engine/judge/finding.h"

namespace vorlane::judge {

// Writes finding->evidence and finding->by for an answer of `decision`; where it is refused, what
// was seen was too weak.
void ReportEvidence(const Evidence& evidence, const Decision& decision, bool wasPrintLookedAt,
                    bool wereBarsLookedAt, Finding* finding);

}  // namespace vorlane::judge
