#include "frame/exact_trigonometry.h"

#include <cmath>
#include <cstdint>
#include <limits>
#include <random>

#include <gtest/gtest.h>

namespace vorlanepic::testing {

using namespace frame;
namespace {

using Function = double (*)(double);

TEST(ExactTrigonometry, GivesTheNearestDouble) {
  struct Case {
    Function function;
    double argument;
    double value;  // from 500-bit arithmetic
  };
  constexpr double kQuarter = 1.5707963267948966;
  const Case cases[] = {
      {ExactSine, 2 * kQuarter, 1.2246467991473532e-16},
      {ExactSine, 4 * kQuarter, -2.4492935982947064e-16},
      {ExactSine, 1048576, 0.3304931400217347},
      {ExactSine, 1e-300, 1e-300},
      {ExactCosine, kQuarter, 6.123233995736766e-17},
      {ExactCosine, 4.71238898038469, -1.8369701987210297e-16},
      {ExactCosine, 1e5, -0.9993608074382124},
      {ExactTangent, 0.7853981633974483, 0.9999999999999999},
      {ExactTangent, kQuarter, 1.633123935319537e+16},
      {ExactArcTangent, 0.017455064928217585, 0.017453292519943295},
      {ExactArcTangent, 1e8, 1.5707963167948966},
      {ExactArcTangent, 1e308, kQuarter},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(&c - cases);
    EXPECT_EQ(c.function(c.argument), c.value);
    EXPECT_EQ(c.function(-c.argument), c.function == ExactCosine ? c.value : -c.value);
  }
}

TEST(ExactTrigonometry, KeepsSignedZerosAndWhatIsNoNumber) {
  EXPECT_TRUE(std::signbit(ExactSine(-0.0)));
  EXPECT_TRUE(std::signbit(ExactTangent(-0.0)));
  EXPECT_TRUE(std::signbit(ExactArcTangent(-0.0)));
  const double nothing = std::numeric_limits<double>::quiet_NaN();
  const double endless = std::numeric_limits<double>::infinity();
  for (const Function function : {ExactSine, ExactCosine, ExactTangent}) {
    EXPECT_TRUE(std::isnan(function(nothing)));
    EXPECT_TRUE(std::isnan(function(endless)));
  }
  EXPECT_TRUE(std::isnan(ExactArcTangent(nothing)));
  EXPECT_EQ(ExactArcTangent(-endless), -1.5707963267948966);
}

#if defined(__GLIBC__)

double Ulp(double v) { return std::nextafter(std::abs(v), HUGE_VAL) - std::abs(v); }

// Compares with the C library's functions on 20000 arguments up to `range`: the wide one, which has
// 11 bits more, shows that no rounding went wrong, and the plain one is hardly ever another.
void CompareWithLibrary(Function exact, Function plain, long double (*wide)(long double),
                        double range) {
  std::mt19937 random(1);
  std::uniform_real_distribution<double> arguments(-range, range);
  int32_t differing = 0;
  for (int32_t i = 0; i < 20000; ++i) {
    const double argument = arguments(random);
    const double value = exact(argument);
    const auto error = static_cast<double>(wide(argument) - static_cast<long double>(value));
    ASSERT_LE(std::abs(error) / Ulp(value), 0.501) << argument;
    ASSERT_LE(std::abs(plain(argument) - value), Ulp(value)) << argument;
    differing += plain(argument) != value ? 1 : 0;
  }
  EXPECT_LT(differing, 100);
}

TEST(ExactTrigonometry, AgreesWithTheLibrary) {
  for (const double range : {0.01, 1.0, 7.0, 1000.0}) {
    SCOPED_TRACE(range);
    CompareWithLibrary(ExactSine, std::sin, std::sin, range);
    CompareWithLibrary(ExactCosine, std::cos, std::cos, range);
    CompareWithLibrary(ExactTangent, std::tan, std::tan, range);
    CompareWithLibrary(ExactArcTangent, std::atan, std::atan, range);
  }
}

#endif

}  // namespace
}  // namespace vorlanepic::testing
