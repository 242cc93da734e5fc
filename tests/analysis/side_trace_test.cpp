#include "analysis/side_trace.h"

#include "analysis/border_drawing.h"

namespace vorlanepic::testing {

using namespace analysis;
namespace {

std::vector<frame::PixelPoint> Joined(std::initializer_list<std::vector<frame::PixelPoint>> parts) {
  std::vector<frame::PixelPoint> all;
  for (const auto& part : parts) all.insert(all.end(), part.begin(), part.end());
  return all;
}

TEST_F(AnalysisTest, TraceCutsTheBorderIntoSegments) {
  struct Case {
    std::vector<frame::PixelPoint> points;
    std::vector<int32_t> counts;
    std::vector<frame::PixelPoint> means;
  };
  const std::vector<frame::PixelPoint> upper = Line(4, 20, 0, 0, 2);
  const Case cases[] = {
      // 10, 12, ... 20 and 22, ... 28; means are truncated. A rest of three is dropped.
      {Line(10, 5, 10, 0, 2), {6, 4}, {{5, 15}, {5, 25}}},
      {Line(9, 5, 10, 0, 2), {6}, {{5, 15}}},
      // Steps of six stay, those of seven do not.
      {Line(5, 0, 0, 6, 2), {5}, {{12, 4}}},
      {Joined({upper, Line(5, 13, 8, 0, 2)}), {4, 5}, {{20, 3}, {13, 12}}},
      {Joined({upper, Line(4, 20, 13, 0, 2)}), {4, 4}, {{20, 3}, {20, 16}}},
      // The three points in the middle leave no trace.
      {Joined({upper, Line(3, 90, 8, 0, 2), Line(4, 20, 14, 0, 2)}), {4, 4}, {{20, 3}, {20, 17}}},
      {{}, {}, {}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(&c - cases);
    TraceBuilder builder(settings_);
    for (const frame::PixelPoint point : c.points) ASSERT_EQ(builder.Add(point), STATUS_OK);
    ASSERT_EQ(builder.Finish(), STATUS_OK);
    const SideTrace side = builder.Take();
    std::vector<int32_t> counts;
    const frame::PixelPoint* first = side.points.data();
    for (const BorderSegment& segment : side.list.view()) {
      counts.push_back(segment.count);
      EXPECT_EQ(segment.first, first);
      EXPECT_FALSE(segment.used);
      first += segment.count;
    }
    EXPECT_EQ(counts, c.counts);
    EXPECT_EQ(MeansOf(side.list), c.means);
    EXPECT_EQ(first - side.points.data(), side.pointCount);
  }
}

TEST_F(AnalysisTest, TraceRefusesNegativeCoordinates) {
  TraceBuilder builder(settings_);
  EXPECT_EQ(builder.Add({-1, 0}), BAD_ARGUMENT);
  EXPECT_EQ(builder.Add({0, -1}), BAD_ARGUMENT);
  EXPECT_TRUE(builder.IsEmpty());
}

TEST_F(AnalysisTest, TraceReportsExhaustedMemoryAtEveryStep) {
  const int32_t requests = ExpectOutOfMemoryAtEveryRequest([this] {
    TraceBuilder builder(settings_);
    int32_t status = STATUS_OK;
    // 6500 points in segments of 6: points grow six times, segments twice.
    for (int32_t i = 0; i < 6500 && status == STATUS_OK; ++i) status = builder.Add({i, i});
    return status == STATUS_OK ? builder.Finish() : status;
  });
  EXPECT_EQ(requests, 7 + 2);
}

}  // namespace
}  // namespace vorlanepic::testing
