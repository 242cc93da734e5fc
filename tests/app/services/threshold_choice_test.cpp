// Levels that a picture itself suggests.
#include "app/services/threshold_choice.h"

#include <gtest/gtest.h>

#include "support/page_drawing.h"

namespace vorlane::testing {
namespace {

using vorlanepic::testing::FillRectangle;
using vorlanepic::testing::TestImage;

// Half the pixels at 40, half at 200: any level from 40 to 199 parts them, the middle is taken.
TEST(SplitLevelTest, PartsDarkAndLight) {
  TestImage image(80, 80, 8);
  FillRectangle(&image, 0, 0, 39, 79, 40);
  FillRectangle(&image, 40, 0, 79, 79, 200);
  EXPECT_EQ(services::SplitLevel(*image.rec()), 119);
  // The left margin alone would estimate (40 + 40 + 200 + 200) / 4 = 120: the ground is not dark.
  EXPECT_EQ(services::PageThreshold(*image.rec()), 120);
  image.Fill(30);
  EXPECT_EQ(services::PageThreshold(*image.rec()), 80);
}

}  // namespace
}  // namespace vorlane::testing
