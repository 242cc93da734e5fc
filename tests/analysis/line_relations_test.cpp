#include "analysis/line_relations.h"

#include <gtest/gtest.h>

#include "analysis/border_drawing.h"
#include "vorlanepic/vorlanepic.h"

namespace vorlanepic::testing {
namespace {

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

BorderLine Level(double y) { return {y, 0, 0.0, kLineHorizontal, 0, 0}; }
BorderLine Upright(double x) { return {x, 0, 90.0, kLineVertical, 0, 0}; }
BorderLine Slanted(double intercept, double slope) {
  return {intercept, slope, slope > 0 ? 30.0 : -30.0, kLineGeneral, 0, 0};
}

TEST(MakePerpendicular, TurnsByARightAngle) {
  BorderLine line = Slanted(5, 0.5);
  MakePerpendicular(&line, Level(3));
  EXPECT_EQ(line.kind, kLineVertical);
  EXPECT_EQ(line.angle, 90.0);
  MakePerpendicular(&line, Upright(3));
  EXPECT_EQ(line.kind, kLineHorizontal);
  EXPECT_EQ(line.angle, 0.0);
  MakePerpendicular(&line, Slanted(0, 0.5));
  EXPECT_EQ(line.kind, kLineGeneral);
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
    EdgePoint point;
  };
  const BorderLine unfitted{0, 0, 0, kLineNotFitted, 0, 0};
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
    EdgePoint point{};
    EXPECT_EQ(Intersect(a, b, &point), status);
    EXPECT_EQ(point, expected);
    EXPECT_EQ(Intersect(b, a, &point), status);
    EXPECT_EQ(point, expected);
  }
}

}  // namespace
}  // namespace vorlanepic::testing
