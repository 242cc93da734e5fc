#include "rotate/region_index.h"

#include <random>

#include "rotate/rotate_fixture.h"

namespace vorlanepic::testing {

using namespace rotate;
namespace {

TEST(RegionIndex, KnowsARectangleExactly) {
  RegionIndex index;
  ASSERT_TRUE(index.Build(RectangleRegion(10, 50, 3, 40), 100));
  EXPECT_TRUE(index.Holds({10, 50, 3, 40}));
  EXPECT_FALSE(index.Holds({10, 51, 3, 40}));
  EXPECT_FALSE(index.Holds({10, 50, 3, 41}));
  EXPECT_TRUE(index.Misses({0, 9, 0, 60}));
  EXPECT_TRUE(index.Misses({0, 99, 41, 60}));
  EXPECT_FALSE(index.Misses({0, 10, 0, 60}));
  // Limits outside the source are cut to it.
  ASSERT_TRUE(index.Build(RectangleRegion(-7, 70, 0, 9), 50));
  EXPECT_TRUE(index.Holds({0, 49, 0, 9}));
  EXPECT_FALSE(index.Holds({-1, 5, 0, 0}));
  EXPECT_FALSE(index.Holds({5, 50, 0, 0}));
}

TEST(RegionIndex, NeverSaysWhatDoesNotHoldForARaggedRegion) {
  std::mt19937 random(7);
  const auto below = [&](int32_t n) { return std::uniform_int_distribution(0, n - 1)(random); };
  RowSpans region = RectangleRegion(0, 63, 5, 104);
  for (int32_t y = 5; y <= 104; ++y) region.spans[static_cast<size_t>(y)] = {below(40), below(64)};
  RegionIndex index;
  ASSERT_TRUE(index.Build(region, 64));
  for (int32_t i = 0; i < 20000; ++i) {
    frame::PixelRect rect{below(64), 0, below(110), 0};
    rect.right = rect.left + below(12);
    rect.bottom = rect.top + below(i % 2 == 0 ? 1 : 30);
    bool holds = true;
    bool misses = true;
    for (int32_t y = rect.top; y <= rect.bottom; ++y) {
      for (int32_t x = rect.left; x <= rect.right; ++x) {
        const RowSpan span =
            y >= 5 && y <= 104 ? region.spans[static_cast<size_t>(y)] : RowSpan{1, 0};
        const bool isIn = x >= span.left && x <= span.right;
        holds = holds && isIn;
        misses = misses && !isIn;
      }
    }
    ASSERT_TRUE(holds || !index.Holds(rect));
    ASSERT_TRUE(misses || !index.Misses(rect));
    ASSERT_TRUE(rect.top != rect.bottom || index.Holds(rect) == holds);
  }
}

}  // namespace
}  // namespace vorlanepic::testing
