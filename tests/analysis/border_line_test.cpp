#include "analysis/border_line.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "analysis/border_drawing.h"
#include "vorlanepic/vorlanepic.h"

namespace vorlanepic {
namespace {

using testing::FillTrace;

BorderLine Horizontal(double y) { return {y, 0, 0, kLineHorizontal, 0, 0}; }
BorderLine Vertical(double x) { return {x, 0, 90, kLineVertical, 0, 0}; }
BorderLine General(double intercept, double slope) {
  return {intercept, slope, 0, kLineGeneral, 0, 0};
}

struct DistanceCase {
  const char* name;
  EdgePoint point;
  BorderLine line;
  int32_t distance;
};

class DistanceTest : public ::testing::TestWithParam<DistanceCase> {};

TEST_P(DistanceTest, IsSignedAndTruncated) {
  const auto& [name, point, line, expected] = GetParam();
  int32_t distance = 99;
  EXPECT_EQ(DistanceToLine(point.x, point.y, line, &distance), STATUS_OK);
  EXPECT_EQ(distance, expected);
}

// On y = 0.75 x + 10 the point x = 40 has y = 40; 15 rows below it is 15 / 1.25 = 12 away.
INSTANTIATE_TEST_SUITE_P(
    Lines, DistanceTest,
    ::testing::Values(DistanceCase{"BelowLevel", {5, 12}, Horizontal(9.5), 2},
                      DistanceCase{"AboveLevel", {5, 7}, Horizontal(9.5), -2},
                      DistanceCase{"LeftOfUpright", {5, 7}, Vertical(9.75), 4},
                      DistanceCase{"RightOfUpright", {13, 7}, Vertical(9.25), -3},
                      DistanceCase{"BelowSlanted", {40, 55}, General(10, 0.75), 12},
                      DistanceCase{"AboveSlanted", {40, 26}, General(10, 0.75), -11}),
    [](const auto& line) { return std::string(line.param.name); });

TEST(DistanceToLine, RefusesLinesThatAreNone) {
  int32_t distance = 99;
  EXPECT_EQ(DistanceToLine(1, 1, BorderLine{}, &distance), BAD_ARGUMENT);
  BorderLine unfitted;
  unfitted.kind = kLineNotFitted;
  EXPECT_EQ(DistanceToLine(1, 1, unfitted, &distance), BAD_ARGUMENT);
  EXPECT_EQ(distance, 99);
}

struct FitCase {
  const char* name;
  std::vector<EdgePoint> positions;
  int32_t status;
  int32_t kind;
  double slope;
  double angle;
  double intercept;
  EdgePoint middle;
};

void ExpectLine(const BorderLine& line, const FitCase& expected) {
  EXPECT_EQ(line.kind, expected.kind);
  if (expected.status != STATUS_OK) return;
  if (expected.kind == kLineGeneral) {
    EXPECT_DOUBLE_EQ(line.slope, expected.slope);
  }
  EXPECT_NEAR(line.angle, expected.angle, 1e-9);
  EXPECT_DOUBLE_EQ(line.intercept, expected.intercept);
  EXPECT_EQ((EdgePoint{line.midX, line.midY}), expected.middle);
}

// arctan(1) and arctan(0.5) times 57.295780490442965.
constexpr double kAngleOf1 = 45.000000767617;
constexpr double kAngleOfHalf = 26.565051630229;

class ChordLineTest : public ::testing::TestWithParam<FitCase> {};

TEST_P(ChordLineTest, PassesThroughTheMeansOfTheHalves) {
  SideTrace side;
  FillTrace(&side, GetParam().positions);
  BorderLine line;
  EXPECT_EQ(FitChordLine(&line, side.list), GetParam().status);
  ExpectLine(line, GetParam());
}

INSTANTIATE_TEST_SUITE_P(
    Sides, ChordLineTest,
    ::testing::Values(
        // Halves (1, 1) and (11, 11), truncated from 1.5 and 11.5.
        FitCase{"Rising", {{0, 0}, {3, 3}, {10, 10}, {13, 13}}, 0, 3, 1, kAngleOf1, 0, {6, 6}},
        // The angle is never negative; the intercept is that of the first half's mean.
        FitCase{"Falling", {{0, 21}, {21, 11}}, 0, 3, -10.0 / 21, 25.463345496229, 21, {10, 16}},
        // Halves (0, 0) and (4, 2): the middle segment belongs to the second.
        FitCase{"OddCount", {{0, 0}, {2, 1}, {6, 3}}, 0, 3, 0.5, kAngleOfHalf, 0, {2, 1}},
        FitCase{"Upright", {{7, 0}, {7, 9}}, 0, 2, 0, 90, 7, {7, 4}},
        FitCase{"Level", {{0, 7}, {9, 7}}, 0, 1, 0, 0, 7, {4, 7}},
        // 1 in 200 is 0.29 degrees, 1 in 100 is 0.57.
        FitCase{"NearlyLevel", {{0, 10}, {200, 11}}, 0, 1, 0, 0, 10, {100, 10}},
        FitCase{"NearlyUpright", {{10, 0}, {11, 200}}, 0, 2, 0, 90, 10, {10, 100}},
        FitCase{"SteepEnough", {{10, 0}, {11, 100}}, 0, 3, 100, 89.427062827778, -1000, {10, 50}},
        FitCase{"HalvesMeet", {{5, 5}, {5, 5}}, ANGLE_NOT_FOUND, 0, 0, 0, 0, {}},
        FitCase{"OneSegment", {{5, 5}}, BAD_ARGUMENT, 0, 0, 0, 0, {}},
        FitCase{"NoSegment", {}, BAD_ARGUMENT, 0, 0, 0, 0, {}}),
    [](const auto& side) { return std::string(side.param.name); });

class PointLineTest : public ::testing::TestWithParam<FitCase> {};

TEST_P(PointLineTest, PassesThroughTheMeansOfTheHalves) {
  SideTrace side;
  FillTrace(&side, GetParam().positions, 1);
  BorderLine line;
  EXPECT_EQ(FitPointLine(&line, side.list), GetParam().status);
  ExpectLine(line, GetParam());
}

INSTANTIATE_TEST_SUITE_P(
    Sides, PointLineTest,
    ::testing::Values(
        FitCase{"Rising", {{0, 0}, {3, 3}, {10, 10}, {13, 13}}, 0, 3, 1, kAngleOf1, 0, {6, 6}},
        // The angle is signed; the intercept is that of the middle: 16 + 10 * 10 / 21.
        FitCase{"Falling",
                {{0, 21}, {21, 11}},
                0,
                3,
                -10.0 / 21,
                -25.463345496229,
                436.0 / 21,
                {10, 16}},
        // The fifth point is not used.
        FitCase{"OddTotal",
                {{0, 0}, {0, 0}, {4, 2}, {4, 2}, {90, 0}},
                0,
                3,
                0.5,
                kAngleOfHalf,
                0,
                {2, 1}},
        FitCase{"NearlyLevel", {{0, 10}, {200, 11}}, 0, 3, 0.005, 0.286476515164, 9.5, {100, 10}},
        FitCase{"Upright", {{7, 0}, {7, 9}}, 0, 2, 0, 90, 7, {7, 4}},
        FitCase{"Level", {{0, 7}, {9, 7}}, 0, 1, 0, 0, 7, {4, 7}},
        FitCase{"HalvesMeet", {{5, 5}, {5, 5}}, ANGLE_NOT_FOUND, 4, 0, 0, 0, {}},
        FitCase{"OnePoint", {{5, 5}}, BAD_ARGUMENT, 4, 0, 0, 0, {}},
        FitCase{"NoSegment", {}, BAD_ARGUMENT, 4, 0, 0, 0, {}}),
    [](const auto& side) { return std::string(side.param.name); });

}  // namespace
}  // namespace vorlanepic
