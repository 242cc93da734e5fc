#include "analysis/threshold.h"

#include <vector>

#include <gtest/gtest.h>

#include "support/page_drawing.h"

namespace vorlanepic::testing {

using namespace analysis;
namespace {

TEST(EstimateThreshold, IsTheRoundedMeanOfTheOuterColumns) {
  struct Case {
    int32_t bitsPerPixel;
    std::vector<uint8_t> row;  // grey levels of every row
    uint8_t threshold;
  };
  const Case cases[] = {
      {8, {10, 11, 200, 200, 12, 13}, 12},  // a half is rounded up
      {8, {10, 20, 40}, 23},                // narrow sides share columns
      {8, {7, 8}, 8},                       // two columns count twice
      {1, {255, 255, 0, 0, 255, 255}, 255},
      {1, {255, 0, 0, 0, 0, 0}, 64},
      {24, {40, 41, 0, 0, 0, 42, 44}, 42},
  };
  for (const Case& c : cases) {
    TestImage image(static_cast<int32_t>(c.row.size()), 7, c.bitsPerPixel);
    for (int32_t i = 0; i < 7 * image.rec()->width; ++i) {
      const int32_t x = i / 7;
      image.Set(x, i % 7, c.row[static_cast<size_t>(x)]);
      // At 24 bits the largest of the three bytes counts.
      if (c.bitsPerPixel == 24) image.row(i % 7)[3 * x + i % 3] = 7;
    }
    uint8_t threshold = 99;
    EXPECT_EQ(EstimateThreshold(*image.rec(), &threshold), STATUS_OK);
    EXPECT_EQ(threshold, c.threshold) << "case " << &c - cases;
  }
}

TEST(EstimateThreshold, RefusesWhatItCannotRead) {
  uint8_t threshold = 99;
  TestImage column(1, 9, 8);
  TestImage otherDepth(9, 9, 4);
  EXPECT_EQ(EstimateThreshold(*column.rec(), &threshold), BAD_ARGUMENT);
  EXPECT_EQ(EstimateThreshold(*otherDepth.rec(), &threshold), BAD_ARGUMENT);
  EXPECT_EQ(threshold, 99);
}

}  // namespace
}  // namespace vorlanepic::testing
