// The skew of the print: the angle at which its lines stand out sharpest.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "engine/evidence/ink.h"

namespace vorlane::evidence {

// An angle at which the sums along the lines differ most from line to line.
struct ProfilePeak {
  double degrees = 0.0;     // by which the lines lie turned clockwise
  double confidence = 0.0;  // sharpness at the peak over that a step away; 0 where there is none
};

enum class PrintStrength : int32_t { kNone, kWeak, kFair, kStrong };

struct PrintSkew {
  ProfilePeak whole;
  std::array<ProfilePeak, 4> halves{};  // left, right, upper and lower half of the page
  int32_t halvesNear = 0;               // halves that agree with the whole
  int32_t halvesOff = 0;                // halves that surely do not
  PrintStrength strength = PrintStrength::kNone;
};

// Measures the skew of `ink`, -45..45 degrees. False when there is no memory.
bool FindPrintSkew(const InkPicture& ink, PrintSkew* skew);

}  // namespace vorlane::evidence
