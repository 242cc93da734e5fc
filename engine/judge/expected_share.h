// How often answers of a kind were right on the pages of the published table.
#pragma once

#include "engine/judge/finding.h"

namespace vorlane::judge {

// Share of right answers, 0..1, among those that `reason` gave with `confidence`.
double ExpectedShare(Reason reason, Confidence confidence);

}  // namespace vorlane::judge
