// Double-double arithmetic: real numbers of about 106 significant bits, as the sum of two doubles.
#pragma once

#include <cstdint>

namespace vorlanepic::frame {

// The value high + low. Holds: high is the double nearest to the value, so rounding to double is
// taking `high`.
struct DoubleDouble {
  double high;
  double low;
};

// Two-sum for sorted sides: a + b without error, for |a| >= |b|.
constexpr DoubleDouble SumOfLargerAndSmaller(double a, double b) {
  const double sum = a + b;
  return {sum, b - (sum - a)};
}

// Two-sum: a + b without error.
constexpr DoubleDouble ExactSum(double a, double b) {
  const double sum = a + b;
  const double fromB = sum - a;
  return {sum, (a - (sum - fromB)) + (b - fromB)};
}

// The upper 26 bits of a, with |a| < 2^996; the rest has 26 bits too.
constexpr double UpperHalf(double a) {
  const double scaled = 134217729.0 * a;  // 2^27 + 1
  return scaled - (scaled - a);
}

// Two-product: a * b without error, for |a|, |b| < 2^996 and a product that is 0 or at least
// 2^-960.
constexpr DoubleDouble ExactProduct(double a, double b) {
  const double product = a * b;
  const double aUpper = UpperHalf(a);
  const double bUpper = UpperHalf(b);
  const double aLower = a - aUpper;
  const double bLower = b - bUpper;
  const double error = aUpper * bUpper - product + aUpper * bLower + aLower * bUpper;
  return {product, error + aLower * bLower};
}

constexpr DoubleDouble operator-(DoubleDouble a) { return {-a.high, -a.low}; }

constexpr DoubleDouble operator+(DoubleDouble a, DoubleDouble b) {
  const DoubleDouble high = ExactSum(a.high, b.high);
  const DoubleDouble low = ExactSum(a.low, b.low);
  const DoubleDouble sum = SumOfLargerAndSmaller(high.high, high.low + low.high);
  return SumOfLargerAndSmaller(sum.high, sum.low + low.low);
}

constexpr DoubleDouble operator-(DoubleDouble a, DoubleDouble b) { return a + -b; }

constexpr DoubleDouble operator*(DoubleDouble a, DoubleDouble b) {
  const DoubleDouble product = ExactProduct(a.high, b.high);
  return SumOfLargerAndSmaller(product.high, product.low + (a.high * b.low + a.low * b.high));
}

// The quotient by long division, one double a digit.
constexpr DoubleDouble operator/(DoubleDouble a, DoubleDouble b) {
  const double first = a.high / b.high;
  const DoubleDouble product = ExactProduct(first, b.high);
  const double rest = a.high - product.high - product.low + (a.low - first * b.low);
  return SumOfLargerAndSmaller(first, rest / b.high);
}

constexpr DoubleDouble operator/(DoubleDouble a, double b) { return a / DoubleDouble{b, 0}; }

}  // namespace vorlanepic::frame
