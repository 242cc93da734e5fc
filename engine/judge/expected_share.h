// How often answers of a kind were right on the pages of the published table.
#pragma once

#include <cstdint>

#include "engine/judge/finding.h"

namespace vorlane::judge {

// Share of right answers, 0..1, among those of docs/accuracy.md that were given with `confidence`
// and for which as many sides of the paper, and the print, agreed as in `by`; 0 for a refusal.
double ExpectedShare(uint32_t by, Confidence confidence);

}  // namespace vorlane::judge
