// Weighs sides and print against each other: the angle of the page, and how sure it is.
#pragma once

#include <cstdint>

#include "engine/evidence/paper_sides.h"
#include "engine/evidence/print_skew.h"
#include "engine/judge/finding.h"

namespace vorlane::judge {

// What there is to decide by. A piece that was not looked for is empty.
struct Evidence {
  const evidence::PaperSides& sides;
  const evidence::PrintSkew& print;
};

struct Decision {
  Confidence confidence = Confidence::kRefused;
  double degrees = 0.0;                        // by which the page lies turned clockwise
  const evidence::SideGroup* group = nullptr;  // of the evidence's sides: the page's; null: none
  bool isByPrint = false;                      // the angle is the print's
  bool printAgrees = false;
  ReasonReport reason;
};

// The first line of the table of answers that fits.
Decision Decide(const Evidence& evidence);

}  // namespace vorlane::judge
