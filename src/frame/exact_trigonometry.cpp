#include "frame/exact_trigonometry.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>

#include "frame/arithmetic.h"
#include "frame/double_double.h"

namespace vorlanepic::frame {
namespace {

// Below it sine, tangent and arc tangent are nearer to their argument than to any other double: the
// cubic term is at most a third of 2^-54 of the value.
constexpr double kSmall = 0x1p-27;

// Above it the arc tangent is nearer to pi/2 than to any other double.
constexpr double kSteep = 0x1p60;

constexpr double kLargestAngle = 0x1p20;

// pi/2 in three pieces of 32 bits, whose products with a quarter-turn count of up to 21 bits are
// exact, and a rest.
constexpr double kHalfPiPieces[] = {0x1.921fb544p+0, 0x1.0b4611a6p-34, 0x1.3198a2ep-69};
constexpr double kHalfPiRest = 0x1.b839a252049c1p-104;
constexpr DoubleDouble kHalfPi{0x1.921fb54442d18p+0, 0x1.1a62633145c07p-54};

// 1 / n! for n = 0..kLastPower. The last one's term is below 2^-107 of the sum at pi/4.
constexpr size_t kLastPower = 29;
constexpr std::array<DoubleDouble, kLastPower + 1> kInverseFactorials = [] {
  std::array<DoubleDouble, kLastPower + 1> inverse{};
  inverse[0] = {1, 0};
  for (size_t n = 1; n <= kLastPower; ++n) {
    inverse[n] = inverse[n - 1] / DoubleDouble{static_cast<double>(n), 0};
  }
  return inverse;
}();

struct SineAndCosine {
  DoubleDouble sine;
  DoubleDouble cosine;
};

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

// For angles up to pi/4 and a little more.
SineAndCosine SineAndCosineOfSmall(DoubleDouble angle) {
  const DoubleDouble squared = angle * angle;
  return {angle * AlternatingSeries(squared, 1), AlternatingSeries(squared, 0)};
}

// Of any angle up to kLargestAngle, by its distance from the nearest quarter turn.
SineAndCosine SineAndCosineOf(double radians) {
  const int32_t quarters = TruncToInt32(radians / kHalfPi.high + std::copysign(0.5, radians));
  DoubleDouble angle{radians, 0};
  for (const double piece : kHalfPiPieces) angle = angle - DoubleDouble{quarters * piece, 0};
  angle = angle - ExactProduct(quarters, kHalfPiRest);

  const auto [sine, cosine] = SineAndCosineOfSmall(angle);
  switch (quarters & 3) {
    case 0:
      return {sine, cosine};
    case 1:
      return {cosine, -sine};
    case 2:
      return {-sine, -cosine};
    default:
      return {-cosine, sine};
  }
}

// False for NaN too.
bool CanBeReduced(double radians) { return std::abs(radians) <= kLargestAngle; }

}  // namespace

double ExactSine(double radians) {
  if (!CanBeReduced(radians)) return std::sin(radians);
  if (std::abs(radians) < kSmall) return radians;
  return SineAndCosineOf(radians).sine.high;
}

double ExactCosine(double radians) {
  if (!CanBeReduced(radians)) return std::cos(radians);
  if (std::abs(radians) < kSmall) return 1;
  return SineAndCosineOf(radians).cosine.high;
}

double ExactTangent(double radians) {
  if (!CanBeReduced(radians)) return std::tan(radians);
  if (std::abs(radians) < kSmall) return radians;
  const auto [sine, cosine] = SineAndCosineOf(radians);
  return (sine / cosine).high;
}

double ExactArcTangent(double slope) {
  if (std::isnan(slope) || std::abs(slope) < kSmall) return slope;
  if (std::abs(slope) > kSteep) return std::copysign(kHalfPi.high, slope);

  // The C library's value, which is good for some 50 bits, and what it lacks: the arc tangent of
  // (slope - tan guess) / (1 + slope * tan guess), so small that it is its own arc tangent.
  const double guess = std::atan(slope);
  const auto [sine, cosine] = SineAndCosineOf(guess);
  const DoubleDouble exactSlope{slope, 0};
  const DoubleDouble missing = (exactSlope * cosine - sine) / (cosine + exactSlope * sine);
  return (DoubleDouble{guess, 0} + missing).high;
}

}  // namespace vorlanepic::frame
