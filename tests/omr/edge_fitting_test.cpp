#include "omr/edge_fitting.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "omr/bar_segments.h"

namespace vorlanepic::omr {
namespace {

using ::testing::ElementsAre;

// Samples from position 100 on, whose first edge is given and whose last lies 10 further.
std::vector<EdgeSample> Samples(const std::vector<int32_t>& edge) {
  std::vector<EdgeSample> samples;
  for (size_t i = 0; i < edge.size(); ++i) {
    samples.push_back({edge[i], edge[i] + 10, 100 + static_cast<int32_t>(i)});
  }
  return samples;
}

TEST(EdgeFittingTest, AModeIsTheSmallestOfTheMostFrequentValues) {
  const auto modeOf = [](std::vector<int32_t> values) { return ModeOf(values); };
  EXPECT_EQ(modeOf({5, 2, 5, 2}), 2);
  EXPECT_EQ(modeOf({3, -7, 3, -7, -7}), -7);
}

// Samples of `count` first edges, each one lower than the last after every tenth when `leans`.
std::vector<EdgeSample> Edge(size_t count, bool leans) {
  std::vector<int32_t> edge(count, 40);
  for (size_t i = 0; leans && i < count; ++i) edge[i] -= static_cast<int32_t>(i) / 10;
  return Samples(edge);
}

TEST(EdgeFittingTest, LinesRunAlongTheEdges) {
  BarLines lines{};
  ASSERT_TRUE(FitWideBarEdges(Edge(300, false), &lines));
  EXPECT_EQ(lines.first.slope, 0.0F);
  EXPECT_EQ(lines.first.intercept, 40.0F);
  EXPECT_EQ(lines.first.weight, 1.0F);
  EXPECT_EQ(lines.second.intercept, 50.0F);
  ASSERT_TRUE(FitWideBarEdges(Edge(400, true), &lines));
  EXPECT_NEAR(lines.first.slope, -0.1, 1e-4);
  EXPECT_NEAR(lines.first.intercept + 100 * lines.first.slope, 40.45, 0.05);
  ASSERT_TRUE(FitTallBarEdges(Edge(300, false), &lines));
  EXPECT_EQ(lines.first.slope, std::numeric_limits<float>::infinity());
  EXPECT_EQ(lines.second.slope, std::numeric_limits<float>::infinity());
  ASSERT_TRUE(FitTallBarEdges(Edge(400, true), &lines));
  EXPECT_NEAR(lines.first.slope, -10.0, 0.01);

  std::vector<int32_t> notched(300, 40);
  for (size_t i = 140; i < 170; ++i) notched[i] = 45;
  ASSERT_TRUE(FitWideBarEdges(Samples(notched), &lines));
  EXPECT_EQ(lines.first.slope, 0.0F);
  EXPECT_EQ(lines.first.intercept, 40.0F);
}

TEST(EdgeFittingTest, ASingleSampleAndTooManyAreRefused) {
  BarLines lines{};
  for (const size_t count : {0U, 1U, 5000U}) {
    EXPECT_FALSE(FitWideBarEdges(Edge(count, false), &lines)) << count;
    EXPECT_FALSE(FitTallBarEdges(Edge(count, false), &lines)) << count;
  }
  EXPECT_TRUE(FitWideBarEdges(Edge(4999, false), &lines));
  EXPECT_TRUE(FitWideBarEdges(Samples({40, 47}), &lines));  // any step is the usual one
  EXPECT_EQ(lines.first.slope, 7.0F);
}

// Points with steps of -1..1 allowed, by the x of those kept.
std::vector<int32_t> KeptColumns(std::vector<BarPoint> points) {
  size_t kept = 0;
  EXPECT_TRUE(KeepMainSegments(points, kWideBar, -1, 1, &kept));
  std::vector<int32_t> columns;
  for (size_t i = 0; i < kept; ++i) columns.push_back(points[i].x);
  return columns;
}

TEST(BarSegmentsTest, KeepTheLongestGroupOfPiecesOnTheFoundersLine) {
  // Of two pieces the first must be longer.
  EXPECT_THAT(KeptColumns({{1, 0}, {2, 0}, {3, 9}, {4, 9}}), ElementsAre(3, 4));
  EXPECT_THAT(KeptColumns({{1, 0}, {2, 0}, {3, 0}, {4, 9}, {5, 9}}), ElementsAre(1, 2, 3));
  EXPECT_THAT(KeptColumns({{1, 0}, {2, 0}, {3, 1}}), ElementsAre(1, 2, 3));  // one piece
  // Three pieces: the first and the last are on one line, together longer than the middle one.
  EXPECT_THAT(KeptColumns({{1, 0}, {2, 0}, {3, 9}, {4, 9}, {5, 9}, {6, 0}, {7, 0}, {8, 0}}),
              ElementsAre(1, 2, 6, 7, 8));
  // Three rows lower three columns on is a step of -1, which is allowed; four rows are not.
  EXPECT_THAT(KeptColumns({{1, 0}, {2, 0}, {3, 9}, {4, 9}, {5, 3}, {6, 3}}),
              ElementsAre(1, 2, 5, 6));
  EXPECT_THAT(KeptColumns({{1, 0}, {2, 0}, {3, 9}, {4, 9}, {5, 4}, {6, 4}}), ElementsAre(1, 2));
  // Of groups of equal length the first wins.
  EXPECT_THAT(KeptColumns({{1, 0}, {2, 0}, {3, 20}, {4, 20}, {5, 40}, {6, 40}}), ElementsAre(1, 2));
}

}  // namespace
}  // namespace vorlanepic::omr
