#include "analysis/border_line.h"

#include <cmath>
#include <utility>

#include "analysis/border_drawing.h"
#include "analysis/line_relations.h"

namespace vorlanepic::testing {

using namespace analysis;
namespace {

BorderLine Level(double y) { return {y, 0, 0.0, LineKind::kHorizontal, 0, 0}; }
BorderLine Upright(double x) { return {x, 0, 90.0, LineKind::kVertical, 0, 0}; }
BorderLine Slanted(double intercept, double slope) {
  return {intercept, slope, slope > 0 ? 30.0 : -30.0, LineKind::kGeneral, 0, 0};
}

TEST(DistanceToLine, IsSignedAndTruncated) {
  const BorderLine level = Level(9.5);
  const BorderLine upright = Upright(9.25);
  // The point x = 40 has y = 40; 15 rows below it is 15 / 1.25 = 12 away.
  const BorderLine slanted = Slanted(10, 0.75);
  struct Case {
    frame::PixelPoint point;
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
  unfitted.kind = LineKind::kNotFitted;
  EXPECT_EQ(DistanceToLine(1, 1, unfitted, &distance), BAD_ARGUMENT);
  EXPECT_EQ(distance, -11);
}

struct FitCase {
  const char* name;
  std::vector<frame::PixelPoint> positions;
  int32_t status;
  LineKind kind;
  double slope = 0;
  double angle = 0;
  double intercept = 0;
  frame::PixelPoint middle{};
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
    if (c.kind == LineKind::kGeneral) {
      EXPECT_DOUBLE_EQ(line.slope, c.slope);
    }
    EXPECT_NEAR(line.angle, c.angle, 1e-9);
    EXPECT_DOUBLE_EQ(line.intercept, c.intercept);
    EXPECT_EQ((frame::PixelPoint{line.midX, line.midY}), c.middle);
  }
}

// arctan(1) and arctan(0.5) times 57.295780490442965.
constexpr double kAngleOf1 = 45.000000767617;
constexpr double kAngleOfHalf = 26.565051630229;
constexpr double kFall = -10.0 / 21;

TEST(FitChordLine, PassesThroughTheMeansOfTheHalves) {
  const FitCase cases[] = {
      // Halves (1, 1) and (11, 11), truncated from 1.5 and 11.5.
      {"rising",
       {{0, 0}, {3, 3}, {10, 10}, {13, 13}},
       0,
       LineKind::kGeneral,
       1,
       kAngleOf1,
       0,
       {6, 6}},
      // The angle is never negative; the intercept is that of the first half's mean.
      {"falling", {{0, 21}, {21, 11}}, 0, LineKind::kGeneral, kFall, 25.463345496229, 21, {10, 16}},
      // Halves (0, 0) and (4, 2): the middle segment belongs to the second.
      {"odd count", {{0, 0}, {2, 1}, {6, 3}}, 0, LineKind::kGeneral, 0.5, kAngleOfHalf, 0, {2, 1}},
      {"upright", {{7, 0}, {7, 9}}, 0, LineKind::kVertical, 0, 90, 7, {7, 4}},
      {"level", {{0, 7}, {9, 7}}, 0, LineKind::kHorizontal, 0, 0, 7, {4, 7}},
      // 1 in 200 is 0.29 degrees, 1 in 100 is 0.57.
      {"nearly level", {{0, 10}, {200, 11}}, 0, LineKind::kHorizontal, 0, 0, 10, {100, 10}},
      {"nearly upright", {{10, 0}, {11, 200}}, 0, LineKind::kVertical, 0, 90, 10, {10, 100}},
      {"steep enough",
       {{10, 0}, {11, 100}},
       0,
       LineKind::kGeneral,
       100,
       89.427062827778,
       -1000,
       {10, 50}},
      {"halves meet", {{5, 5}, {5, 5}}, ANGLE_NOT_FOUND, LineKind::kUnset},
      {"one segment", {{5, 5}}, BAD_ARGUMENT, LineKind::kUnset},
      {"no segment", {}, BAD_ARGUMENT, LineKind::kUnset},
  };
  ExpectFits(FitChordLine, 2, cases);
}

TEST(FitPointLine, PassesThroughTheMeansOfTheHalves) {
  const FitCase cases[] = {
      // The angle is signed; the intercept is that of the middle: 16 + 10 * 10 / 21.
      {"falling",
       {{0, 21}, {21, 11}},
       0,
       LineKind::kGeneral,
       kFall,
       -25.463345496229,
       436.0 / 21,
       {10, 16}},
      // The third point is not used.
      {"odd total", {{0, 0}, {4, 2}, {90, 0}}, 0, LineKind::kGeneral, 0.5, kAngleOfHalf, 0, {2, 1}},
      {"nearly level",
       {{0, 10}, {200, 11}},
       0,
       LineKind::kGeneral,
       0.005,
       0.286476515164,
       9.5,
       {100, 10}},
      {"halves meet", {{5, 5}, {5, 5}}, ANGLE_NOT_FOUND, LineKind::kNotFitted},
      {"one point", {{5, 5}}, BAD_ARGUMENT, LineKind::kNotFitted},
      {"no segment", {}, BAD_ARGUMENT, LineKind::kNotFitted},
  };
  ExpectFits(FitPointLine, 1, cases);
}

TEST(AngleRelations, TreatSteepAnglesOfBothSignsAsNeighbours) {
  EXPECT_EQ(AngleDifference(-88.0, 89.0), 3.0);
  EXPECT_EQ(AngleDifference(-44.0, 60.0), 104.0);
  EXPECT_EQ(MeanAngle(-44.0, 60.0), 8.0);
  // The angle farther from 90 gives the sign; between equals it is the negative one.
  EXPECT_EQ(MeanAngle(-88.0, 89.0), -88.5);
  EXPECT_EQ(MeanAngle(-89.0, 88.0), 88.5);
  EXPECT_EQ(MeanAngle(88.0, -88.0), -88.0);
  EXPECT_EQ(OffPerpendicular(-2.0, 89.0), 1.0);
  EXPECT_EQ(OffPerpendicular(10.0, 97.0), 3.0);
}

TEST(TurnOfEdge, MakesTheNearestOfLevelAndPlumb) {
  const std::pair<double, double> cases[] = {{-45, 315}, {45, 315},     {-2, 2},     {2, 358},
                                             {88, 2},    {-44.5, 44.5}, {45.5, 44.5}};
  for (const auto& [border, turn] : cases) EXPECT_EQ(TurnOfEdge(border), turn) << border;
  EXPECT_TRUE(std::signbit(TurnOfEdge(0.0)));
  EXPECT_FALSE(std::signbit(TurnOfEdge(-0.0)));
}

TEST(MakePerpendicular, TurnsByARightAngle) {
  BorderLine line = Slanted(5, 0.5);
  MakePerpendicular(&line, Level(3));
  EXPECT_EQ(line.kind, LineKind::kVertical);
  EXPECT_EQ(line.angle, 90.0);
  MakePerpendicular(&line, Upright(3));
  EXPECT_EQ(line.kind, LineKind::kHorizontal);
  EXPECT_EQ(line.angle, 0.0);
  MakePerpendicular(&line, Slanted(0, 0.5));
  EXPECT_EQ(line.kind, LineKind::kGeneral);
  EXPECT_EQ(line.slope, -2.0);
  EXPECT_NEAR(line.angle, -63.434950, 1e-5);
  Anchor(&line, 10, 40);
  EXPECT_EQ(line.intercept, 60);
}

TEST(Intersect, RoundsTheCrossing) {
  struct Case {
    BorderLine a;
    BorderLine b;
    int32_t status;
    frame::PixelPoint point;
  };
  const BorderLine unfitted{0, 0, 0, LineKind::kNotFitted, 0, 0};
  const Case cases[] = {
      {Level(20.5), Upright(10.25), 0, {10, 21}},
      {Upright(9), Slanted(10, 0.5), 0, {9, 15}},
      {Slanted(10, 0.5), Slanted(40, -2), 0, {12, 16}},  // x = 30 / 2.5
      {Level(-1.75), Upright(-0.75), 0, {0, -1}},
      {Level(1), Level(2), BAD_ARGUMENT, {}},
      {Slanted(1, 0.5), Slanted(2, 0.5), BAD_ARGUMENT, {}},
      {Level(1), unfitted, BAD_ARGUMENT, {}},
      // The crossing lies beyond the range of a coordinate.
      {Level(3e9), Slanted(0, 1e-9), 0, {INT32_MIN, INT32_MIN}},
  };
  for (const auto& [a, b, status, expected] : cases) {
    frame::PixelPoint point{};
    EXPECT_EQ(Intersect(a, b, &point), status);
    EXPECT_EQ(point, expected);
    EXPECT_EQ(Intersect(b, a, &point), status);
    EXPECT_EQ(point, expected);
  }
}

}  // namespace
}  // namespace vorlanepic::testing
