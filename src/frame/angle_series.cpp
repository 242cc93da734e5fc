#include "frame/angle_series.h"

#include <cmath>

#include "frame/arithmetic.h"

namespace vorlanepic::frame {
namespace {

// pi/2 in three pieces of 32 bits, whose products with a quarter-turn count of up to 21 bits are
// exact, and a rest.
constexpr double kHalfPiPieces[] = {0x1.921fb544p+0, 0x1.0b4611a6p-34, 0x1.3198a2ep-69};
constexpr double kHalfPiRest = 0x1.b839a252049c1p-104;

// first/n! - r^2/(n+2)! + r^4/(n+4)! - ... for n = firstPower.
DoubleDouble AlternatingSeries(DoubleDouble squared, size_t firstPower) {
  size_t n = kLastPower - (kLastPower - firstPower) % 2;
  DoubleDouble sum = kInverseFactorials[n];
  while (n > firstPower) {
    n -= 2;
    sum = kInverseFactorials[n] - sum * squared;
  }
  return sum;
}

// r - r^3/3 + r^5/5 - ..., the last term below 2^-107 of the first for |r| up to 1/15.
constexpr DoubleDouble ArcTangentSeries(DoubleDouble r) {
  constexpr int32_t kLastOddPower = 27;
  const DoubleDouble squared = r * r;
  DoubleDouble sum = DoubleDouble{1, 0} / kLastOddPower;
  for (int32_t n = kLastOddPower - 2; n > 0; n -= 2) {
    sum = DoubleDouble{1, 0} / n - sum * squared;
  }
  return r * sum;
}

// Arc tangents of 0/kSteps, 1/kSteps .. kSteps/kSteps and on of the inverses, up to that of
// kSteps/1. Each is the one before and the arc tangent of (slope - before) / (1 + slope * before),
// all in units of a step.
constexpr int32_t kSteps = 8;
constexpr std::array<DoubleDouble, 2 * kSteps> kKnownAngles = [] {
  std::array<DoubleDouble, 2 * kSteps> table{};
  for (int32_t i = 1; i <= kSteps; ++i) {
    const auto n = static_cast<size_t>(i);
    const DoubleDouble between = DoubleDouble{kSteps, 0} / (kSteps * kSteps + i * (i - 1));
    table[n] = table[n - 1] + ArcTangentSeries(between);
  }
  for (size_t n = kSteps + 1; n < table.size(); ++n) {
    table[n] = kHalfPi - table[table.size() - n];
  }
  return table;
}();

}  // namespace

QuarterTurns ReduceToQuarter(double radians) {
  const int32_t quarters = TruncToInt32(radians / kHalfPi.high + std::copysign(0.5, radians));
  DoubleDouble rest{radians, 0};
  if (quarters == 0) return {0, rest};
  for (const double piece : kHalfPiPieces) rest = rest - DoubleDouble{quarters * piece, 0};
  return {quarters, rest - ExactProduct(quarters, kHalfPiRest)};
}

DoubleDouble WideSine(DoubleDouble rest) { return rest * AlternatingSeries(rest * rest, 1); }
DoubleDouble WideCosine(DoubleDouble rest) { return AlternatingSeries(rest * rest, 0); }

ReducedSlope ReduceSlope(double slope) {
  const bool isSteep = slope > 1;
  const double quotient = isSteep ? 1 / slope : slope;
  const int32_t step = RoundToInt32(quotient * kSteps);
  if (step == 0) {
    if (!isSteep) return {{0, 0}, {slope, 0}};
    const DoubleDouble product = ExactProduct(quotient, slope);
    return {kHalfPi, {-quotient, -quotient * (1 - product.high - product.low)}};
  }

  // Both differences are without error, because their sides are about as large.
  const double known = static_cast<double>(step) / kSteps;
  const DoubleDouble product = ExactProduct(known, slope);
  if (isSteep) {
    const DoubleDouble numerator{product.high - 1, product.low};
    return {kKnownAngles[static_cast<size_t>(2 * kSteps - step)],
            numerator / SumOfLargerAndSmaller(slope, known)};
  }
  const auto [sum, error] = SumOfLargerAndSmaller(1, product.high);
  return {kKnownAngles[static_cast<size_t>(step)],
          DoubleDouble{slope - known, 0} / DoubleDouble{sum, error + product.low}};
}

DoubleDouble WideArcTangent(DoubleDouble rest) { return ArcTangentSeries(rest); }

}  // namespace vorlanepic::frame
