// Weighs sides and print against each other: the angle of the page, and how sure it is.
#pragma once

#include <cstdint>

#include "engine/evidence/form_bars.h"
#include "engine/evidence/paper_sides.h"
#include "engine/evidence/print_skew.h"
#include "engine/judge/detect.h"
#include "engine/judge/finding.h"

namespace vorlane::judge {

// What there is to decide by. A piece that was not looked for is empty.
struct Evidence {
  const evidence::PaperSides& sides;
  const evidence::PrintSkew& print;
  const evidence::FormBars& bars;
};

struct Decision {
  Confidence confidence = Confidence::kRefused;
  double degrees = 0.0;                        // by which the page lies turned clockwise
  const evidence::SideGroup* group = nullptr;  // of the evidence's sides: the page's; null: none
  ReasonReport reason;
};

// The first line of the table of answers that fits; for another choice than By::kAuto the angle of
// the evidence that was chosen, and refused without it.
Decision Decide(const Evidence& evidence, By by);

}  // namespace vorlane::judge
