#include "frame/trigonometry.h"

#include <cmath>
#include <cstdint>
#include <limits>
#include <random>

#include <gtest/gtest.h>

#include "frame/angle_series.h"

namespace vorlanepic::testing {

using namespace frame;
namespace {

using Function = double (*)(double);

TEST(Trigonometry, GivesTheNearestDouble) {
  struct Case {
    Function function;
    double argument;
    double value;  // from 500-bit arithmetic
  };
  constexpr double kQuarter = 1.5707963267948966;
  const Case cases[] = {
      {Sine, 2 * kQuarter, 1.2246467991473532e-16},
      {Sine, 4 * kQuarter, -2.4492935982947064e-16},
      {Sine, 1048576, 0.3304931400217347},
      {Sine, 1e-300, 1e-300},
      {Cosine, kQuarter, 6.123233995736766e-17},
      {Cosine, 4.71238898038469, -1.8369701987210297e-16},
      {Cosine, 1e5, -0.9993608074382124},
      {Tangent, 0.7853981633974483, 0.9999999999999999},
      {Tangent, kQuarter, 1.633123935319537e+16},
      {ArcTangent, 0.017455064928217585, 0.017453292519943295},
      {ArcTangent, 1e8, 1.5707963167948966},
      {ArcTangent, 1e308, kQuarter},
      // As near as 2^-21 to 2^-29 of a step to a step's middle.
      {Sine, 0.11402368005836094, 0.1137767627215945},
      {Sine, 26.286413335219397, 0.91425779226200254},
      {Cosine, 1.138822018596616, 0.41866456733630597},
      {Cosine, 25.15474891106469, 0.99975784073302087},
      {Tangent, 3.1429636022599965, 0.0013709495291033579},
      {Tangent, 5.8244369976604489, -0.49389079218712417},
      {ArcTangent, 0.032143967338370272, 0.032132903443053841},
      {ArcTangent, 0.41170163631114143, 0.39055311615093019},
      {ArcTangent, 1.1378390265231515, 0.84978490840623166},
      {ArcTangent, 29.26988692764855, 1.5366448045581378},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(&c - cases);
    EXPECT_EQ(c.function(c.argument), c.value);
    EXPECT_EQ(c.function(-c.argument), c.function == Cosine ? c.value : -c.value);
  }
}

TEST(Trigonometry, KeepsSignedZerosAndWhatIsNoNumber) {
  EXPECT_TRUE(std::signbit(Sine(-0.0)));
  EXPECT_TRUE(std::signbit(Tangent(-0.0)));
  EXPECT_TRUE(std::signbit(ArcTangent(-0.0)));
  const double nothing = std::numeric_limits<double>::quiet_NaN();
  const double endless = std::numeric_limits<double>::infinity();
  for (const Function function : {Sine, Cosine, Tangent}) {
    for (const double argument : {nothing, endless, -1048576.5}) {
      EXPECT_TRUE(std::isnan(function(argument)));
    }
  }
  EXPECT_TRUE(std::isnan(ArcTangent(nothing)));
  EXPECT_EQ(ArcTangent(-endless), -1.5707963267948966);
}

// The same values without the quick way.
double PlainSine(const QuarterTurns& turns, int32_t more) {
  const int32_t quarters = turns.quarters + more;
  const double value =
      (quarters & 1) == 0 ? WideSine(turns.rest).high : WideCosine(turns.rest).high;
  return (quarters & 2) == 0 ? value : -value;
}

double PlainTangent(const QuarterTurns& turns) {
  const DoubleDouble sine = WideSine(turns.rest);
  const DoubleDouble cosine = WideCosine(turns.rest);
  return ((turns.quarters & 1) == 0 ? sine / cosine : -cosine / sine).high;
}

double PlainArcTangent(double slope) {
  const ReducedSlope reduced = ReduceSlope(std::abs(slope));
  return std::copysign((reduced.known + WideArcTangent(reduced.rest)).high, slope);
}

// Also against the C library's wide functions, which have 11 bits more than a double.
void CompareWithPlainValues(double argument) {
  const QuarterTurns turns = ReduceToQuarter(argument);
  ASSERT_EQ(Sine(argument), PlainSine(turns, 0));
  ASSERT_EQ(Cosine(argument), PlainSine(turns, 1));
  ASSERT_EQ(Tangent(argument), PlainTangent(turns));
  ASSERT_EQ(ArcTangent(argument), PlainArcTangent(argument));
#if defined(__GLIBC__)
  const long double wide = argument;
  const auto expectNear = [](double value, long double wanted) {
    const double step = std::nextafter(std::abs(value), HUGE_VAL) - std::abs(value);
    ASSERT_LE(std::abs(static_cast<double>(wanted - value)) / step, 0.501);
  };
  expectNear(Sine(argument), std::sin(wide));
  expectNear(Cosine(argument), std::cos(wide));
  expectNear(Tangent(argument), std::tan(wide));
  expectNear(ArcTangent(argument), std::atan(wide));
#endif
}

TEST(Trigonometry, AgreesWithPlainValues) {
  std::mt19937 random(1);
  for (const double range : {0.01, 0.2, 1.0, 7.0, 1000.0}) {
    std::uniform_real_distribution<double> arguments(-range, range);
    for (int32_t i = 0; i < 20000; ++i) {
      const double argument = arguments(random);
      SCOPED_TRACE(argument);
      ASSERT_NO_FATAL_FAILURE(CompareWithPlainValues(argument));
    }
  }
}

}  // namespace
}  // namespace vorlanepic::testing
