// The long printed bars of a form.
#pragma once

#include <cstdint>

#include "engine/evidence/page_levels.h"

namespace vorlane::evidence {

struct FormBars {
  int32_t count = 0;     // bars that qualify, of different thickness, kMostBars at most
  double degrees = 0.0;  // by which the thickest lies turned clockwise off the nearer axis
  double spread = 0.0;   // largest minus smallest angle of all of them
};
inline constexpr int32_t kMostBars = 4;

// Looks for bars among what is darker than `threshold`.
FormBars FindFormBars(const PageLevels& page, uint8_t threshold);

}  // namespace vorlane::evidence
