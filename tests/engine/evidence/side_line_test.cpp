#include "engine/evidence/side_line.h"

#include <cmath>
#include <numbers>

#include <gtest/gtest.h>

#include "vorlanepic/vorlanepic.h"

namespace vorlane::evidence {
namespace {

constexpr int32_t kWidth = 1000;
constexpr int32_t kHeight = 1400;

// A trace of the left side, which leans by `degrees` at x = 400 in the middle; of every ten points
// `strays` lie anywhere.
SideLine FitLeft(double degrees, int32_t strays, int32_t from, int32_t to) {
  vorlanepic::analysis::SideTrace trace;
  EXPECT_TRUE(trace.points.Allocate(kHeight));
  uint32_t chance = 5;
  for (int32_t y = from; y < to; y += 2) {
    chance = chance * 1664525U + 1013904223U;
    const double x = 400.0 - (y - 700) * std::tan(degrees * std::numbers::pi / 180.0);
    const bool isStray = static_cast<int32_t>(chance >> 16) % 10 < strays;
    // The walk from the left stops one pixel behind the first page pixel.
    const auto column = static_cast<int32_t>(std::ceil(x)) + 1;
    trace.points[static_cast<size_t>(trace.pointCount++)] = {
        isStray ? static_cast<int32_t>(chance >> 8) % 900 + 20 : column, y};
  }
  SideLine line;
  EXPECT_EQ(FitSide(trace, Side::kLeft, kWidth, kHeight, &line), STATUS_OK);
  return line;
}

TEST(FitSide, FindsTheLineAmongStrayPoints) {
  for (const double degrees : {-30.0, -4.5, -0.3, 0.0, 0.7, 12.0}) {
    for (const int32_t strays : {0, 3, 5}) {
      const SideLine line = FitLeft(degrees, strays, 200, 1200);
      EXPECT_TRUE(line.isSeen);
      EXPECT_NEAR(line.degrees, degrees, 0.03) << strays;
      EXPECT_NEAR(line.At(700), 399.75, 0.8) << degrees;
      EXPECT_NEAR(line.straight, 1.0 - strays / 10.0, 0.06);
      EXPECT_NEAR(line.from, 200, 60);
      EXPECT_NEAR(line.to, 1200, 60);
    }
  }
}

TEST(FitSide, SeesNoLineInTooLittle) {
  EXPECT_FALSE(FitLeft(1.0, 0, 200, 420).isSeen);    // under a fifth of the picture
  EXPECT_FALSE(FitLeft(1.0, 10, 100, 1300).isSeen);  // chance
  EXPECT_FALSE(FitLeft(60.0, 0, 200, 1200).isSeen);  // a neighbour's side
}

TEST(InsideOf, LiesOnThePagesSideOfTheLine) {
  SideLine line;
  line.offset = 50.0;
  line.slope = 0.75;
  for (const Side side : kAllSides) {
    const double sign = side == Side::kTop || side == Side::kLeft ? 1.0 : -1.0;
    // (40, 80) and its mirror image lie on the line; 10 pixels of which 8 go across it.
    const double along = 40.0;
    const double across = line.At(along) + sign * 10.0;
    const HalfPlane plane = InsideOf(line, side, 3.0);
    const double inside =
        RunsAcross(side) ? plane.Inside(along, across) : plane.Inside(across, along);
    EXPECT_NEAR(inside, 5.0, 1e-9);
  }
}

}  // namespace
}  // namespace vorlane::evidence
