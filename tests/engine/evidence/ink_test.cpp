#include "engine/evidence/ink.h"

#include <algorithm>

#include <gtest/gtest.h>

#include "support/page_drawing.h"

namespace vorlane::evidence {
namespace {

PageLevels LevelsOf(const vorlanepic::testing::TestImage& image) {
  const ImageRec& rec = *image.rec();
  PageLevels levels;
  EXPECT_TRUE(levels.Make({rec.rows[0], rec.lineBytes, rec.width, rec.height, rec.bitsPerPixel}));
  return levels;
}

// The definition: pixels beyond the picture are its outermost ones.
int32_t MeanAround(const ReducedPicture& picture, int32_t x, int32_t y) {
  int32_t sum = 0;
  for (int32_t dy = -kInkWindow / 2; dy < kInkWindow / 2; ++dy) {
    const uint8_t* row = picture.Row(std::clamp(y + dy, 0, picture.height - 1));
    for (int32_t dx = -kInkWindow / 2; dx < kInkWindow / 2; ++dx) {
      sum += row[std::clamp(x + dx, 0, picture.width - 1)];
    }
  }
  return sum / (kInkWindow * kInkWindow);
}

TEST(FindInk, MarksWhatIsDarkerThanTheMeanAroundIt) {
  // Levels of chance and the lightest ones, whose sums are the largest; widths around the vector's.
  for (const int32_t width : {24, 31, 32, 33, 47, 70}) {
    auto noise = vorlanepic::testing::DrawNoise(width, 40, 8, 7);
    vorlanepic::testing::FillRectangle(&noise, 0, 0, width / 2, 20, 255);
    noise.Set(5, 5, 240);
    const PageLevels page = LevelsOf(noise);
    const HalfPlane region[] = {{1, 0, 3}, {0, 1, 2}, {-1, 0, -(width - 5.0)}};
    InkPicture ink;
    ASSERT_TRUE(FindInk(page.reduced(), region, &ink));
    for (int32_t y = 0; y < 40; ++y) {
      for (int32_t x = 0; x < width; ++x) {
        const bool isInside = x >= 3 && x <= width - 5 && y >= 2;
        const bool isInk = MeanAround(page.reduced(), x, y) >= noise.Get(x, y) + kInkDepth;
        ASSERT_EQ(ink.Row(y)[x], isInside && isInk) << x << ' ' << y << " of " << width;
      }
    }
  }
}

TEST(FindInk, LeavesOutWhatHangsTogetherWithTheFrame) {
  vorlanepic::testing::TestImage image(100, 80, 8);
  image.Fill(220);
  vorlanepic::testing::FillRectangle(&image, 0, 30, 40, 33, 20);
  vorlanepic::testing::FillRectangle(&image, 60, 50, 70, 53, 20);
  const PageLevels page = LevelsOf(image);
  InkPicture ink;
  ASSERT_TRUE(FindInk(page.reduced(), {}, &ink));
  EXPECT_EQ(ink.Row(31)[20], 0);
  EXPECT_EQ(ink.Row(51)[65], 1);
}

TEST(PageLevels, ReducesToTheMeanAndTakesTheLargestColour) {
  vorlanepic::testing::TestImage colour(4000, 10, 24);
  for (int32_t y = 0; y < 10; ++y) {
    for (int32_t x = 0; x < 4000; ++x) {
      uint8_t* pixel = colour.row(y) + ptrdiff_t{3} * x;
      pixel[0] = static_cast<uint8_t>(x);
      pixel[1] = static_cast<uint8_t>(y * 20);
      pixel[2] = 90;
    }
  }
  const PageLevels page = LevelsOf(colour);
  EXPECT_EQ(page.Row(9)[130], 180);
  EXPECT_EQ(page.Row(1)[130], 130);
  ASSERT_EQ(page.reduced().shift, 2);
  EXPECT_EQ(page.reduced().height, 2);
  // Blue 128..131, green 80..140 in steps of 20, twice; red 90.
  EXPECT_NEAR(page.reduced().Row(1)[32], (129.5 + 2 * 110 + 90) / 4, 0.51);
}

}  // namespace
}  // namespace vorlane::evidence
