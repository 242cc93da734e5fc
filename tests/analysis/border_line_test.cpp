#include "analysis/border_line.h"

#include <vector>

#include <gtest/gtest.h>

#include "analysis/border_drawing.h"
#include "vorlanepic/vorlanepic.h"

namespace vorlanepic::testing {
namespace {

TEST(DistanceToLine, IsSignedAndTruncated) {
  const BorderLine level{9.5, 0, 0, kLineHorizontal, 0, 0};
  const BorderLine upright{9.25, 0, 90, kLineVertical, 0, 0};
  // The point x = 40 has y = 40; 15 rows below it is 15 / 1.25 = 12 away.
  const BorderLine slanted{10, 0.75, 0, kLineGeneral, 0, 0};
  struct Case {
    EdgePoint point;
    BorderLine line;
    int32_t distance;
  };
  const Case cases[] = {{{5, 12}, level, 2},    {{5, 7}, level, -2},     {{5, 7}, upright, 4},
                        {{13, 7}, upright, -3}, {{40, 55}, slanted, 12}, {{40, 26}, slanted, -11}};
  int32_t distance = 99;
  for (const auto& [point, line, expected] : cases) {
    EXPECT_EQ(DistanceToLine(point.x, point.y, line, &distance), STATUS_OK);
    EXPECT_EQ(distance, expected);
  }
  BorderLine unfitted;
  EXPECT_EQ(DistanceToLine(1, 1, unfitted, &distance), BAD_ARGUMENT);
  unfitted.kind = kLineNotFitted;
  EXPECT_EQ(DistanceToLine(1, 1, unfitted, &distance), BAD_ARGUMENT);
  EXPECT_EQ(distance, -11);
}

struct FitCase {
  const char* name;
  std::vector<EdgePoint> positions;
  int32_t status;
  int32_t kind;
  double slope = 0;
  double angle = 0;
  double intercept = 0;
  EdgePoint middle{};
};

// Fits lines to traces of `points` points at each position.
template <typename Fit, size_t N>
void ExpectFits(Fit fit, int32_t points, const FitCase (&cases)[N]) {
  for (const FitCase& c : cases) {
    SCOPED_TRACE(c.name);
    SideTrace side;
    FillTrace(&side, c.positions, points);
    BorderLine line;
    EXPECT_EQ(fit(&line, side.list), c.status);
    EXPECT_EQ(line.kind, c.kind);
    if (c.status != STATUS_OK) continue;
    if (c.kind == kLineGeneral) {
      EXPECT_DOUBLE_EQ(line.slope, c.slope);
    }
    EXPECT_NEAR(line.angle, c.angle, 1e-9);
    EXPECT_DOUBLE_EQ(line.intercept, c.intercept);
    EXPECT_EQ((EdgePoint{line.midX, line.midY}), c.middle);
  }
}

// arctan(1) and arctan(0.5) times 57.295780490442965.
constexpr double kAngleOf1 = 45.000000767617;
constexpr double kAngleOfHalf = 26.565051630229;
constexpr double kFall = -10.0 / 21;

TEST(FitChordLine, PassesThroughTheMeansOfTheHalves) {
  const FitCase cases[] = {
      // Halves (1, 1) and (11, 11), truncated from 1.5 and 11.5.
      {"rising", {{0, 0}, {3, 3}, {10, 10}, {13, 13}}, 0, 3, 1, kAngleOf1, 0, {6, 6}},
      // The angle is never negative; the intercept is that of the first half's mean.
      {"falling", {{0, 21}, {21, 11}}, 0, 3, kFall, 25.463345496229, 21, {10, 16}},
      // Halves (0, 0) and (4, 2): the middle segment belongs to the second.
      {"odd count", {{0, 0}, {2, 1}, {6, 3}}, 0, 3, 0.5, kAngleOfHalf, 0, {2, 1}},
      {"upright", {{7, 0}, {7, 9}}, 0, 2, 0, 90, 7, {7, 4}},
      {"level", {{0, 7}, {9, 7}}, 0, 1, 0, 0, 7, {4, 7}},
      // 1 in 200 is 0.29 degrees, 1 in 100 is 0.57.
      {"nearly level", {{0, 10}, {200, 11}}, 0, 1, 0, 0, 10, {100, 10}},
      {"nearly upright", {{10, 0}, {11, 200}}, 0, 2, 0, 90, 10, {10, 100}},
      {"steep enough", {{10, 0}, {11, 100}}, 0, 3, 100, 89.427062827778, -1000, {10, 50}},
      {"halves meet", {{5, 5}, {5, 5}}, ANGLE_NOT_FOUND, 0},
      {"one segment", {{5, 5}}, BAD_ARGUMENT, 0},
      {"no segment", {}, BAD_ARGUMENT, 0},
  };
  ExpectFits(FitChordLine, 2, cases);
}

TEST(FitPointLine, PassesThroughTheMeansOfTheHalves) {
  const FitCase cases[] = {
      // The angle is signed; the intercept is that of the middle: 16 + 10 * 10 / 21.
      {"falling", {{0, 21}, {21, 11}}, 0, 3, kFall, -25.463345496229, 436.0 / 21, {10, 16}},
      // The third point is not used.
      {"odd total", {{0, 0}, {4, 2}, {90, 0}}, 0, 3, 0.5, kAngleOfHalf, 0, {2, 1}},
      {"nearly level", {{0, 10}, {200, 11}}, 0, 3, 0.005, 0.286476515164, 9.5, {100, 10}},
      {"halves meet", {{5, 5}, {5, 5}}, ANGLE_NOT_FOUND, 4},
      {"one point", {{5, 5}}, BAD_ARGUMENT, 4},
      {"no segment", {}, BAD_ARGUMENT, 4},
  };
  ExpectFits(FitPointLine, 1, cases);
}

}  // namespace
}  // namespace vorlanepic::testing
