#include "engine/evidence/page_levels.h"

#include <algorithm>

#include <gtest/gtest.h>

#include "support/page_drawing.h"

namespace vorlane::evidence {
namespace {

// Brightness of a pixel as the reduced picture takes it.
int32_t BrightnessAt(const vorlanepic::testing::TestImage& image, int32_t x, int32_t y) {
  const int32_t depth = image.rec()->bitsPerPixel;
  if (depth <= 8) return image.Get(x, y);
  const uint8_t* pixel = image.row(y) + ptrdiff_t{x} * (depth / 8);
  return (pixel[0] + 2 * pixel[1] + pixel[2] + 2) / 4;
}

TEST(PageLevels, ReducesToTheMeansOfSquares) {
  constexpr struct {
    int32_t width;
    int32_t shift;
  } kCases[] = {{1800, 0}, {1801, 1}, {3603, 2}, {7207, 3}, {14399, 3}, {14409, 4}, {28833, 5}};
  for (const auto& [width, shift] : kCases) {
    const int32_t side = 1 << shift;
    const int32_t height = 2 * side + side / 2 + 1;
    for (const int32_t depth : {1, 8, 24}) {
      auto image = vorlanepic::testing::DrawNoise(width, height, depth, 5);
      // The largest sums there are.
      vorlanepic::testing::FillRectangle(&image, 0, 0, 3 * side, side, 255);
      PageLevels page;
      ASSERT_TRUE(page.Make({image.row(0), image.rec()->lineBytes, width, height, depth}));
      const ReducedPicture& reduced = page.reduced();
      ASSERT_EQ(reduced.width, width / side);
      ASSERT_EQ(reduced.height, height / side);
      for (int32_t y = 0; y < reduced.height; ++y) {
        for (int32_t x = 0; x < reduced.width; ++x) {
          int32_t sum = 0;
          for (int32_t i = 0; i < side * side; ++i) {
            sum += BrightnessAt(image, side * x + i % side, side * y + i / side);
          }
          ASSERT_EQ(reduced.Row(y)[x], (sum + side * side / 2) / (side * side))
              << x << ' ' << y << " of " << width << " at " << depth;
        }
      }
    }
  }
}

TEST(PageLevels, AreThoseOfTheLastPicture) {
  PageLevels again;
  for (const auto& [width, depth] : {std::pair{400, 24}, {90, 1}, {300, 8}, {390, 24}, {41, 1}}) {
    const auto image = vorlanepic::testing::DrawNoise(width, 60, depth, 9);
    const PictureView picture{image.row(0), image.rec()->lineBytes, width, 60, depth};
    PageLevels fresh;
    ASSERT_TRUE(again.Make(picture) && fresh.Make(picture));
    ASSERT_EQ(again.hasTwoLevels(), depth == 1);
    for (int32_t y = 0; y < 60; ++y) {
      ASSERT_TRUE(std::equal(again.Row(y), again.Row(y) + width, fresh.Row(y))) << width;
      const uint8_t* reduced = again.reduced().Row(y);
      ASSERT_TRUE(std::equal(reduced, reduced + width, fresh.reduced().Row(y))) << width;
    }
  }
}

}  // namespace
}  // namespace vorlane::evidence
