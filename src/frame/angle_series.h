// The series and reductions that the angle functions are computed by, in double-double arithmetic.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "frame/double_double.h"

namespace vorlanepic::frame {

inline constexpr DoubleDouble kHalfPi{0x1.921fb54442d18p+0, 0x1.1a62633145c07p-54};

// 1 / n! for n = 0..kLastPower. The last one's term is below 2^-107 of the sum at pi/4.
inline constexpr size_t kLastPower = 29;
inline constexpr std::array<DoubleDouble, kLastPower + 1> kInverseFactorials = [] {
  std::array<DoubleDouble, kLastPower + 1> inverse{};
  inverse[0] = {1, 0};
  for (size_t n = 1; n <= kLastPower; ++n) inverse[n] = inverse[n - 1] / static_cast<double>(n);
  return inverse;
}();

// An angle in radians as its distance from the nearest quarter turn, up to pi/4 and a little more.
struct QuarterTurns {
  int32_t quarters;
  DoubleDouble rest;
};

// Cody and Waite's reduction, for |radians| <= 2^20.
QuarterTurns ReduceToQuarter(double radians);

// Sine and cosine of a reduced angle, good for 100 bits.
DoubleDouble WideSine(DoubleDouble rest);
DoubleDouble WideCosine(DoubleDouble rest);

// An arc tangent as the sum of one that is known and of one whose slope is small: |rest| is up to
// 1/16.
struct ReducedSlope {
  DoubleDouble known;
  DoubleDouble rest;
};

// For slope >= 0, up to 2^60.
ReducedSlope ReduceSlope(double slope);

// Arc tangent of a reduced slope's rest, good for 100 bits.
DoubleDouble WideArcTangent(DoubleDouble rest);

}  // namespace vorlanepic::frame
