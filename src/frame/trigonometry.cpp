#include "frame/trigonometry.h"

#include <cmath>
#include <limits>

#include "frame/angle_series.h"

namespace vorlanepic::frame {
namespace {

// Below it sine, tangent and arc tangent are nearer to their argument than to any other double: the
// cubic term is at most a third of 2^-54 of the value.
constexpr double kSmall = 0x1p-27;

// Above it the arc tangent is nearer to pi/2 than to any other double.
constexpr double kSteep = 0x1p60;

constexpr double kLargestAngle = 0x1p20;

// What a quick value may be off: this share of the part that plain doubles sum up, with room for 16
// roundings, and that share of the whole for its double-double steps.
constexpr double kPlainError = 0x1p-49;
constexpr double kWideError = 0x1p-96;

// A value, and how much it may be off.
struct QuickValue {
  DoubleDouble value;
  double error;
};

QuickValue Quick(DoubleDouble value, double plainPart) {
  return {value, std::abs(plainPart) * kPlainError + std::abs(value.high) * kWideError};
}

// Ziv's test: the double nearest to the value, unless a rounding step's middle is so near that only
// `wide`, which computes it to 100 bits, can tell.
template <typename Wide>
double NearestDouble(const QuickValue& quick, Wide wide) {
  const auto [high, low] = quick.value;
  const double nearest = high + (low + quick.error);
  return nearest == high + (low - quick.error) ? nearest : wide().high;
}

// 1/n! - r^2/(n+2)! + ... in double arithmetic, to eight terms.
template <size_t kFirstPower>
double QuickTail(double squared) {
  double sum = 0;
  for (size_t n = kFirstPower + 16; n > kFirstPower;) {
    n -= 2;
    sum = kInverseFactorials[n].high - sum * squared;
  }
  return sum;
}

// r - r^3 (1/3! - r^2/5! + ...)
QuickValue QuickSine(DoubleDouble r) {
  const DoubleDouble squared = r * r;
  const DoubleDouble cubed = r * squared;
  const double tail = squared.high * QuickTail<5>(squared.high);
  const DoubleDouble sine = r - cubed * (kInverseFactorials[3] - DoubleDouble{tail, 0});
  return Quick(sine, cubed.high * tail);
}

// 1 - r^2/2 + r^4 (1/4! - r^2/6! + ...)
QuickValue QuickCosine(DoubleDouble r) {
  const DoubleDouble squared = r * r;
  const double tail = squared.high * squared.high * QuickTail<4>(squared.high);
  const DoubleDouble half{0.5 * squared.high, 0.5 * squared.low};
  return Quick(DoubleDouble{1, 0} - half + DoubleDouble{tail, 0}, tail);
}

// The shares of the two errors add up; a hundredth more makes up for what is rounded here.
QuickValue operator/(const QuickValue& a, const QuickValue& b) {
  const DoubleDouble quotient = a.value / b.value;
  const double part = a.error / a.value.high + b.error / b.value.high;
  return {quotient, std::abs(part * quotient.high) * 1.01};
}

QuickValue operator-(const QuickValue& a) { return {-a.value, a.error}; }

// known + r - r^3 (1/3 - r^2/5 + ...)
QuickValue QuickArcTangent(const ReducedSlope& slope) {
  const double r = slope.rest.high;
  const double squared = r * r;
  double series = 0;
  for (int32_t n = 17; n > 3;) {
    n -= 2;
    series = 1.0 / n - squared * series;
  }
  const double tail = r * squared * series;
  const DoubleDouble sum = SumOfLargerAndSmaller(slope.known.high, r);
  return Quick({sum.high, sum.low + (slope.known.low + (slope.rest.low - tail))}, tail);
}

// False for NaN too.
bool CanBeReduced(double radians) { return std::abs(radians) <= kLargestAngle; }

constexpr double kNoNumber = std::numeric_limits<double>::quiet_NaN();

// Sine of the angle that is `turns` and `more` quarters.
double SineOf(const QuarterTurns& turns, int32_t more) {
  const int32_t quarters = turns.quarters + more;
  const double sign = (quarters & 2) != 0 ? -1 : 1;
  const DoubleDouble rest = turns.rest;
  if ((quarters & 1) == 0) {
    return sign * NearestDouble(QuickSine(rest), [&] { return WideSine(rest); });
  }
  return sign * NearestDouble(QuickCosine(rest), [&] { return WideCosine(rest); });
}

}  // namespace

double Sine(double radians) {
  if (!CanBeReduced(radians)) return kNoNumber;
  if (std::abs(radians) < kSmall) return radians;
  return SineOf(ReduceToQuarter(radians), 0);
}

double Cosine(double radians) {
  if (!CanBeReduced(radians)) return kNoNumber;
  if (std::abs(radians) < kSmall) return 1;
  return SineOf(ReduceToQuarter(radians), 1);
}

double Tangent(double radians) {
  if (!CanBeReduced(radians)) return kNoNumber;
  if (std::abs(radians) < kSmall) return radians;
  const auto turns = ReduceToQuarter(radians);
  const auto quotient = [&](const auto& sine, const auto& cosine) {
    return (turns.quarters & 1) == 0 ? sine / cosine : cosine / -sine;
  };
  return NearestDouble(quotient(QuickSine(turns.rest), QuickCosine(turns.rest)),
                       [&] { return quotient(WideSine(turns.rest), WideCosine(turns.rest)); });
}

double ArcTangent(double slope) {
  if (std::isnan(slope) || std::abs(slope) < kSmall) return slope;
  if (std::abs(slope) > kSteep) return std::copysign(kHalfPi.high, slope);
  const ReducedSlope reduced = ReduceSlope(std::abs(slope));
  const double angle = NearestDouble(QuickArcTangent(reduced),
                                     [&] { return reduced.known + WideArcTangent(reduced.rest); });
  return std::copysign(angle, slope);
}

}  // namespace vorlanepic::frame
