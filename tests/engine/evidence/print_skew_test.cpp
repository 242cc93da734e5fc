#include "engine/evidence/print_skew.h"

#include <cmath>
#include <numbers>

#include <gtest/gtest.h>

namespace vorlane::evidence {
namespace {

InkPicture EmptyInk(int32_t width, int32_t height) {
  InkPicture ink;
  ink.width = width;
  ink.height = height;
  ink.stride = (static_cast<size_t>(width) + 7) & ~size_t{7};
  EXPECT_TRUE(ink.pixels.Allocate(ink.stride * static_cast<size_t>(height)));
  return ink;
}

// Lines of words 24 pixels apart, turned clockwise by `degrees`.
InkPicture DrawLines(double degrees) {
  InkPicture ink = EmptyInk(1001, 1200);
  const double radians = degrees * std::numbers::pi / 180.0;
  for (int32_t y = 60; y < 1140; ++y) {
    for (int32_t x = 60; x < 940; ++x) {
      const double u = x * std::cos(radians) + y * std::sin(radians) + 4000.0;
      const double v = y * std::cos(radians) - x * std::sin(radians) + 4000.0;
      const bool isWord = std::fmod(u, 60.0) < 44.0 && std::fmod(u * 1.7, 7.0) < 4.0;
      ink.Row(y)[x] = std::fmod(v, 24.0) < 8.0 && isWord;
    }
  }
  return ink;
}

class PrintSkewTest : public testing::TestWithParam<double> {};

TEST_P(PrintSkewTest, FindsTheTurnOfLines) {
  PrintSkew skew;
  ASSERT_TRUE(FindPrintSkew(DrawLines(GetParam()), &skew));
  // Drawn to whole pixels, lines look straighter than they are by up to a pixel over the width.
  EXPECT_NEAR(skew.whole.degrees, GetParam(), 0.06);
  EXPECT_EQ(skew.strength, PrintStrength::kStrong);
  for (const ProfilePeak& half : skew.halves) EXPECT_NEAR(half.degrees, GetParam(), 0.14);
}

// Whole degrees are where the sweep looks, the others lie between.
INSTANTIATE_TEST_SUITE_P(Turns, PrintSkewTest,
                         testing::Values(-40.0, -16.37, -3.0, -0.13, 0.0, 0.06, 1.5, 7.22, 28.9));

TEST(FindPrintSkew, FindsNoneWhereThereAreNoLines) {
  PrintSkew skew;
  ASSERT_TRUE(FindPrintSkew(EmptyInk(300, 300), &skew));
  EXPECT_EQ(skew.strength, PrintStrength::kNone);
  InkPicture dots = EmptyInk(600, 600);
  uint32_t chance = 1;
  for (int32_t i = 0; i < 20000; ++i) {
    chance = chance * 1664525U + 1013904223U;
    dots.Row(static_cast<int32_t>(chance >> 8) % 600)[(chance >> 20) % 600] = 1;
  }
  ASSERT_TRUE(FindPrintSkew(dots, &skew));
  EXPECT_EQ(skew.strength, PrintStrength::kNone);
}

}  // namespace
}  // namespace vorlane::evidence
