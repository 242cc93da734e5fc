#include <gtest/gtest.h>

#include "engine/judge/finding.h"

namespace vorlane::judge {
namespace {

TEST(CornersOfCut, TurnClockwiseFromTheUpperLeft) {
  // A page that lies turned clockwise by 30 degrees in a picture whose middle is (100, 50).
  const CutRect cut{-40.0, -20.0, 40.0, 20.0};
  const auto corners = CornersOfCut(cut, -30.0, 201, 101);
  EXPECT_NEAR(corners[0].x, 100 - 40 * 0.8660254 + 20 * 0.5, 1e-5);
  EXPECT_NEAR(corners[0].y, 50 - 40 * 0.5 - 20 * 0.8660254, 1e-5);
  EXPECT_NEAR(corners[1].x, 100 + 40 * 0.8660254 + 20 * 0.5, 1e-5);
  EXPECT_NEAR(corners[1].y, 50 + 40 * 0.5 - 20 * 0.8660254, 1e-5);
  const CutRect again = CutAround(corners, -30.0, 201, 101);
  EXPECT_NEAR(again.left, cut.left, 1e-9);
  EXPECT_NEAR(again.top, cut.top, 1e-9);
  EXPECT_NEAR(again.right, cut.right, 1e-9);
  EXPECT_NEAR(again.bottom, cut.bottom, 1e-9);
}

}  // namespace
}  // namespace vorlane::judge
