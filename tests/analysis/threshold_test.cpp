#include "analysis/threshold.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/failing_imgbuf.h"
#include "support/page_drawing.h"

namespace vorlanepic {
namespace {

using testing::TestImage;

struct ThresholdCase {
  const char* name;
  int32_t bitsPerPixel;
  std::vector<uint8_t> row;  // grey levels of every row
  uint8_t threshold;
};

class ThresholdTest : public ::testing::TestWithParam<ThresholdCase> {};

TEST_P(ThresholdTest, IsTheRoundedMeanOfTheOuterColumns) {
  const ThresholdCase& page = GetParam();
  TestImage image(static_cast<int32_t>(page.row.size()), 7, page.bitsPerPixel);
  for (int32_t y = 0; y < 7; ++y) {
    for (size_t x = 0; x < page.row.size(); ++x) {
      image.Set(static_cast<int32_t>(x), y, page.row[x]);
    }
  }
  uint8_t threshold = 99;
  EXPECT_EQ(EstimateThreshold(image.rec(), &threshold), STATUS_OK);
  EXPECT_EQ(threshold, page.threshold);
}

INSTANTIATE_TEST_SUITE_P(
    Pages, ThresholdTest,
    ::testing::Values(ThresholdCase{"HalfIsRoundedUp", 8, {10, 11, 200, 200, 12, 13}, 12},
                      ThresholdCase{"NarrowSidesShareColumns", 8, {10, 20, 40}, 23},
                      ThresholdCase{"TwoColumnsCountTwice", 8, {7, 8}, 8},
                      ThresholdCase{"SetBitsAreWhite", 1, {255, 255, 0, 0, 255, 255}, 255},
                      ThresholdCase{"OneBitOfFour", 1, {255, 0, 0, 0, 0, 0}, 64},
                      ThresholdCase{"Colour", 24, {40, 41, 0, 0, 0, 42, 44}, 42}),
    [](const auto& page) { return std::string(page.param.name); });

TEST(EstimateThreshold, TakesTheLargestOfThreeBytes) {
  TestImage image(4, 1, 24);
  for (int32_t x = 0; x < 4; ++x) {
    uint8_t* pixel = image.row(0) + 3 * x;
    pixel[0] = 10;
    pixel[1] = 200;
    pixel[2] = 30;
  }
  uint8_t threshold = 0;
  EXPECT_EQ(EstimateThreshold(image.rec(), &threshold), STATUS_OK);
  EXPECT_EQ(threshold, 200);
}

TEST(EstimateThreshold, RefusesWhatItCannotRead) {
  uint8_t threshold = 99;
  TestImage column(1, 9, 8);
  TestImage otherDepth(9, 9, 4);
  EXPECT_EQ(EstimateThreshold(column.rec(), nullptr), BAD_ARGUMENT);
  EXPECT_EQ(EstimateThreshold(nullptr, &threshold), BAD_ARGUMENT);
  EXPECT_EQ(EstimateThreshold(column.rec(), &threshold), BAD_ARGUMENT);
  EXPECT_EQ(EstimateThreshold(otherDepth.rec(), &threshold), BAD_ARGUMENT);
  testing::FailingImgbuf imgbuf;
  imgbuf.FailCheck(0, 77);
  EXPECT_EQ(EstimateThreshold(column.rec(), &threshold), 77);
  EXPECT_EQ(threshold, 99);
}

}  // namespace
}  // namespace vorlanepic
