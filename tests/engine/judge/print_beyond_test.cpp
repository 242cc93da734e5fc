#include "engine/judge/print_beyond.h"

#include <algorithm>

#include <gtest/gtest.h>

#include "support/page_drawing.h"

namespace vorlane::judge {
namespace {

// The definition, pixel by pixel: light is looked for six pixels off, at the four corners.
bool IsPrint(const evidence::ReducedPicture& picture, const evidence::InkPicture& ink, int32_t x,
             int32_t y) {
  int32_t light = 0;
  for (const int32_t dy : {-6, 6}) {
    const uint8_t* row = picture.Row(std::clamp(y + dy, 0, picture.height - 1));
    for (const int32_t dx : {-6, 6}) light += row[std::clamp(x + dx, 0, picture.width - 1)] >= 128;
  }
  return ink.Row(y)[x] != 0 && light >= 3;
}

TEST(SharesBeyond, SharesOutWhatIsOnLightAmongTheSides) {
  for (const int32_t width : {9, 64, 65, 300}) {
    const auto noise = vorlanepic::testing::DrawNoise(width, 90, 8, 3);
    evidence::PageLevels page;
    ASSERT_TRUE(page.Make({noise.row(0), noise.rec()->lineBytes, width, 90, 8}));
    evidence::InkPicture ink;
    ASSERT_TRUE(evidence::FindInk(page.reduced(), {}, &ink));
    for (const double degrees : {-41.0, -2.0, 0.0, 0.3, 33.0}) {
      const PageAxes axes = PageAxes::Of(degrees, width, 90);
      const CutRect cut{-0.3 * width, -25, 0.2 * width, 30};
      std::array<double, evidence::kSides> beyond{};
      double all = 0;
      for (int32_t y = 0; y < 90; ++y) {
        for (int32_t x = 0; x < width; ++x) {
          if (!IsPrint(page.reduced(), ink, x, y)) continue;
          const Point place = axes.ToPage({x * 1.0, y * 1.0});
          ++all;
          beyond[0] += place.y < cut.top;
          beyond[1] += place.y >= cut.top && place.x > cut.right;
          beyond[2] += place.y > cut.bottom && place.x <= cut.right;
          beyond[3] += place.y >= cut.top && place.y <= cut.bottom && place.x < cut.left;
        }
      }
      const auto shares = SharesBeyond(page, ink, axes, 128, cut);
      for (size_t i = 0; i < shares.size(); ++i) {
        EXPECT_EQ(shares[i], all > 0 ? beyond[i] / all : 0.0) << width << ' ' << degrees;
      }
    }
  }
}

}  // namespace
}  // namespace vorlane::judge
