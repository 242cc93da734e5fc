#include "analysis/segment_selection.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "analysis/border_drawing.h"
#include "support/failing_heap.h"
#include "vorlanepic/vorlanepic.h"

namespace vorlanepic {
namespace {

using testing::FillTrace;
using testing::Line;
using testing::MeansOf;

struct JudgeCase {
  const char* name;
  EdgePoint previous;
  EdgePoint next;
  EdgePoint tested;
  int32_t straightness;
  std::vector<int32_t> verdicts;  // for codes 1..4; 7 stands for a verdict left alone
};

class JudgeSegmentTest : public testing::AnalysisTest,
                         public ::testing::WithParamInterface<JudgeCase> {};

TEST_P(JudgeSegmentTest, KeepsWhatIsInLineWithItsNeighbours) {
  const JudgeCase& side = GetParam();
  for (int32_t code = 1; code <= 4; ++code) {
    int32_t verdict = 7;
    EXPECT_EQ(
        JudgeSegment(side.previous, side.next, side.tested, side.straightness, code, &verdict),
        STATUS_OK);
    EXPECT_EQ(verdict, side.verdicts[static_cast<size_t>(code - 1)]) << "code " << code;
  }
}

// The chord of (0, 0) and (20, 10) has y = 5 at x = 10, the one of (0, 10) and (20, 0) as well.
INSTANTIATE_TEST_SUITE_P(
    Neighbours, JudgeSegmentTest,
    ::testing::Values(JudgeCase{"SixAcross", {0, 100}, {0, 106}, {6, 106}, 0, {1, 1, 1, 1}},
                      JudgeCase{"SevenBelow", {0, 100}, {0, 106}, {6, 107}, 0, {0, 1, 0, 1}},
                      JudgeCase{"SevenAside", {0, 100}, {7, 100}, {7, 100}, 0, {1, 0, 1, 0}},
                      JudgeCase{"OnRisingChord", {0, 0}, {20, 10}, {10, 5}, 1, {1, 1, 1, 1}},
                      JudgeCase{"BelowRisingChord", {0, 0}, {20, 10}, {10, 6}, 1, {1, 1, 0, 0}},
                      JudgeCase{"AboveRisingChord", {0, 0}, {20, 10}, {10, 4}, 1, {0, 0, 1, 1}},
                      JudgeCase{"BelowFallingChord", {0, 10}, {20, 0}, {10, 6}, 1, {0, 0, 1, 1}},
                      JudgeCase{"AboveFallingChord", {0, 10}, {20, 0}, {10, 4}, 1, {1, 1, 0, 0}},
                      // The chord's y is truncated: 5.5 gives 5.
                      JudgeCase{"ChordIsTruncated", {0, 0}, {20, 10}, {11, 5}, 1, {1, 1, 1, 1}},
                      JudgeCase{"LevelChord", {0, 5}, {20, 5}, {10, 90}, 1, {7, 7, 7, 7}},
                      JudgeCase{"UprightChord", {5, 0}, {5, 20}, {90, 10}, 1, {7, 7, 7, 7}}),
    [](const auto& side) { return std::string(side.param.name); });

TEST(JudgeSegment, RefusesWhatItCannotJudge) {
  int32_t verdict = 7;
  EXPECT_EQ(JudgeSegment({0, 0}, {1, 1}, {2, 2}, 0, 1, nullptr), BAD_ARGUMENT);
  EXPECT_EQ(JudgeSegment({0, 0}, {1, 1}, {2, 2}, 2, 1, &verdict), BAD_ARGUMENT);
  EXPECT_EQ(JudgeSegment({0, 0}, {1, 1}, {2, 2}, 0, 0, &verdict), BAD_ARGUMENT);
  EXPECT_EQ(JudgeSegment({0, 0}, {1, 1}, {2, 2}, 0, 5, &verdict), BAD_ARGUMENT);
  EXPECT_EQ(JudgeSegment({3, 3}, {3, 3}, {2, 2}, 1, 1, &verdict), BAD_ARGUMENT);
  EXPECT_EQ(verdict, 7);
}

struct SelectCase {
  const char* name;
  std::vector<EdgePoint> means;
  int32_t straightness;
  int32_t code;
  int32_t status;
  std::vector<EdgePoint> kept;
};

class SelectSegmentsTest : public testing::AnalysisTest,
                           public ::testing::WithParamInterface<SelectCase> {};

TEST_P(SelectSegmentsTest, KeepsTheSegmentsOfOneLine) {
  const SelectCase& edge = GetParam();
  SideTrace side;
  FillTrace(&side, edge.means);
  EXPECT_EQ(SelectSegments(&side.list, edge.straightness, edge.code), edge.status);
  if (edge.status != STATUS_OK) return;
  EXPECT_EQ(MeansOf(side.list), edge.kept);
  for (const BorderSegment& segment : side.list.view()) EXPECT_EQ(segment.used, 1);
}

std::vector<EdgePoint> With(std::vector<EdgePoint> line, size_t index, EdgePoint point) {
  line[index] = point;
  return line;
}

std::vector<EdgePoint> Without(std::vector<EdgePoint> line, ptrdiff_t index) {
  line.erase(line.begin() + index);
  return line;
}

// y = 104 but for a notch of 6 rows a segment up to `depth` rows, twice over, so that the halves
// have the same mean.
std::vector<EdgePoint> NotchedEdge(int32_t half, int32_t depth) {
  std::vector<EdgePoint> means = Line(2 * half, 0, 104, 12, 0);
  for (const int32_t center : {half / 2, half + half / 2}) {
    for (int32_t k = -depth / 6; k <= depth / 6; ++k) {
      const int32_t index = center + k;
      means[static_cast<size_t>(index)].y -= depth - 6 * std::abs(k);
    }
  }
  return means;
}

const std::vector<EdgePoint> kRising = Line(12, 10, 20, 12, 6);

INSTANTIATE_TEST_SUITE_P(
    Edges, SelectSegmentsTest,
    ::testing::Values(
        // Up to three segments are not judged, only fitted.
        SelectCase{
            "ThreeSegments", {{0, 0}, {12, 90}, {24, 3}}, 1, 1, 0, {{0, 0}, {12, 90}, {24, 3}}},
        SelectCase{"OneSegment", {{5, 5}}, 1, 1, ANGLE_NOT_FOUND, {}},
        SelectCase{"NoSegment", {}, 1, 1, BAD_ARGUMENT, {}},
        SelectCase{"StraightLine", kRising, 1, 1, 0, kRising},
        SelectCase{"StraightLineOnTheOtherSide", kRising, 1, 3, 0, kRising},
        // Neither level chord judges its segments: only the ends stay for the line, and all
        // segments lie on it.
        SelectCase{"LevelLine", Line(8, 10, 20, 12, 0), 1, 1, 0, Line(8, 10, 20, 12, 0)},
        // A corner of other paper far inside the page: judged away, and too far from the line.
        SelectCase{"OutlierGoes", With(kRising, 5, {70, 30}), 1, 1, 0, Without(kRising, 5)},
        // 3 rows above the chord it is judged away, but lies near enough to the line.
        SelectCase{"NearOutlierComesBack", With(kRising, 5, {70, 47}), 1, 1, 0,
                   With(kRising, 5, {70, 47})},
        // Not straight: its neighbours are dropped with it, and come back.
        SelectCase{"JumpGoes", With(Line(20, 0, 100, 12, 0), 4, {48, 110}), 0, 1, 0,
                   Without(Line(20, 0, 100, 12, 0), 4)},
        // Steps of 12 rows are more than the gap of 6 that a side along x may have, but the two
        // ends make a line on which all others lie.
        SelectCase{"SteepSideAlongX", Line(10, 5, 0, 0, 12), 0, 1, 0, Line(10, 5, 0, 0, 12)},
        // 216 segments a half, 864 rows of notch: the chord is y = 100. 193 segments lie 4 below
        // it, the notch 2, 8, ... 62 twice and 68 above: 1544 / 216 is above 7.
        SelectCase{"ScatteredEdge", NotchedEdge(216, 72), 0, 1, EDGE_NOT_FOUND, {}}),
    [](const auto& edge) { return std::string(edge.param.name); });

// 150 segments a half, 600 rows of notch: the chord is y = 100, the sum of distances 131 * 4 +
// 2 * (2 + 8 + ... + 50) + 56 = 1048 and the mean 6. The line through the points drops all of the
// notch but its rims at y = 98.
TEST_F(SelectSegmentsTest, EndsOfANotchedEdgeStay) {
  SideTrace side;
  FillTrace(&side, NotchedEdge(150, 60));
  EXPECT_EQ(SelectSegments(&side.list, 0, 1), STATUS_OK);
  EXPECT_EQ(side.list.segmentCount, 2 * (131 + 2));
}

TEST_F(SelectSegmentsTest, RefusesValuesOutOfRange) {
  SideTrace side;
  FillTrace(&side, kRising);
  EXPECT_EQ(SelectSegments(nullptr, 0, 1), BAD_ARGUMENT);
  EXPECT_EQ(SelectSegments(&side.list, 0, 5), BAD_ARGUMENT);
  EXPECT_EQ(SelectSegments(&side.list, 0, -1), BAD_ARGUMENT);
  EXPECT_EQ(SelectSegments(&side.list, 2, 1), BAD_ARGUMENT);
  testing::ForEachHeapFailure([&] { SelectSegments(&side.list, 1, 1); }, [](int32_t) {});
  const testing::FailingHeap heap(0);
  EXPECT_EQ(SelectSegments(&side.list, 1, 1), OUT_OF_MEMORY);
}

}  // namespace
}  // namespace vorlanepic
