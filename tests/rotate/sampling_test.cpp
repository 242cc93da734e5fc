#include "rotate/sampling.h"

#include <cmath>
#include <cstring>
#include <limits>

#include <gtest/gtest.h>

#include "rotate/step_tables.h"

namespace vorlanepic::testing {

using namespace rotate;
namespace {

TEST(StepTables, HoldRunningSumsInHundredthsCutTowardZero) {
  StepTables steps;
  ASSERT_TRUE(steps.Build(0.1, 12));
  const int32_t cosines[] = {0, 99, 199, 298};
  const int32_t sines[] = {0, 9, 19, 29};
  for (int32_t k = 0; k < 4; ++k) {
    EXPECT_EQ(steps.Cos(k), cosines[k]);
    EXPECT_EQ(steps.Cos(-k), -cosines[k]);
    EXPECT_EQ(steps.Sin(k), sines[k]);
    EXPECT_EQ(steps.Sin(-k), -sines[k]);
  }
  ASSERT_TRUE(steps.Build(std::acos(0.0), 1000));
  EXPECT_EQ(steps.Cos(999), 0);
  EXPECT_EQ(steps.Sin(999), 99900);
}

TEST(StepTables, StepsThatAreNoInt32AreMarked) {
  StepTables steps;
  ASSERT_TRUE(steps.Build(0.0, 21474838));
  EXPECT_EQ(steps.Cos(21474836), 2147483600);
  EXPECT_EQ(steps.Cos(21474837), INT32_MIN);
  EXPECT_EQ(steps.Cos(-21474837), INT32_MIN);
  ASSERT_TRUE(steps.Build(std::numeric_limits<double>::quiet_NaN(), 2));
  EXPECT_EQ(steps.Sin(0), 0);
  EXPECT_EQ(steps.Sin(1), INT32_MIN);
}

TEST(BlendTable, HoldsSharesInTenths) {
  EXPECT_EQ(kBlendTable[5][3], 2);      // (3 + 1) * 5 / 10
  EXPECT_EQ(kBlendTable[9][254], 229);  // 229.5
  EXPECT_EQ(kBlendTable[9][255], 229);  // 255 is not raised
  EXPECT_EQ(kBlendTable[10][255], 255);
}

TEST(CubicWeights, AreTheKernelTimes1024Rounded) {
  EXPECT_EQ(kCubicWeights[1], (CubicWeights::value_type{-83, 1005, 112, -9}));
  EXPECT_EQ(kCubicWeights[3], (CubicWeights::value_type{-151, 867, 372, -65}));
  EXPECT_EQ(kCubicWeights[5], (CubicWeights::value_type{-128, 640, 640, -128}));
  EXPECT_EQ(kCubicWeights[10], (CubicWeights::value_type{0, 0, 1024, 0}));
}

TEST(PlaceTaps, CutsTheOffsetToTenthsTowardTheCentre) {
  struct Case {
    int32_t offset;
    int32_t base;
    size_t phase;
    int32_t first;  // of the four bicubic taps, before replacement
  };
  const Case cases[] = {
      {279, 52, 7, 51},   {-228, 48, 8, 46},  {237, 52, 3, 51},  {-237, 48, 7, 46},
      {-200, 48, 10, 46}, {-5, 50, 10, 48},   {9, 50, 0, 49},    {0, 50, 0, 49},
      {-99, 50, 1, 48},   {-100, 49, 10, 47}, {1999, 69, 9, 68},
  };
  for (const Case& c : cases) {
    const auto taps = PlaceTaps<4>(c.offset, c.base, 0, 100);
    EXPECT_EQ(taps.phase, c.phase) << c.offset;
    for (int32_t i = 0; i < 4; ++i) EXPECT_EQ(taps.at[i], c.first + i) << c.offset;
    EXPECT_EQ(PlaceTaps<2>(c.offset, c.base, 0, 100).at[0], c.first + 1) << c.offset;
  }
  // Taps outside are replaced by the base pixel.
  const auto right = PlaceTaps<4>(150, 9, 0, 10);
  EXPECT_EQ(right.at[2], 10);
  EXPECT_EQ(right.at[3], 9);  // 11 is outside
  const auto left = PlaceTaps<4>(-150, 1, 0, 10);
  EXPECT_EQ(left.at[0], 1);  // -1 is outside
  EXPECT_EQ(left.at[1], 0);
}

TEST(Bilinear, BlendsSharesOfShares) {
  EXPECT_EQ(Bilinear::Blend({{100, 200}, {50, 150}}, 3, 7), 95);
  EXPECT_EQ(Bilinear::Blend({{255, 255}, {255, 255}}, 3, 0), 254);
}

TEST(Bicubic, WeighsSixteenPixelsAndClamps) {
  EXPECT_EQ(
      Bicubic::Blend(
          {{10, 20, 30, 40}, {50, 60, 70, 80}, {90, 100, 110, 120}, {130, 140, 150, 160}}, 3, 6),
      85);
  uint8_t edge[4][4];
  for (auto& row : edge) std::memcpy(row, "\x00\xFF\xFF\xFF", 4);
  EXPECT_EQ(Bicubic::Blend(edge, 3, 0), 255);  // 292 before the clamp
  for (auto& row : edge) std::memcpy(row, "\xFF\x00\x00\x00", 4);
  EXPECT_EQ(Bicubic::Blend(edge, 3, 0), 0);
}

}  // namespace
}  // namespace vorlanepic::testing
