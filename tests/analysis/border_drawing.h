// Small pages and borders with every point known, for the stages of the border analysis.
#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "analysis/border_records.h"
#include "frame/settings.h"
#include "support/failing_heap.h"
#include "support/page_drawing.h"
#include "vorlanepic/vorlanepic.h"

namespace vorlanepic::frame {

inline void PrintTo(frame::PixelPoint point, std::ostream* out) {
  *out << "(" << point.x << ", " << point.y << ")";
}

}  // namespace vorlanepic::frame

namespace vorlanepic::testing {

using namespace analysis;

// The settings of the pruned rotation.
class AnalysisTest : public ::testing::Test {
 protected:
  AnalysisTest() {
    settings_.SearchBorderPixelNum = 2;
    settings_.SegmentMaxGap = 6;
    settings_.SegmentPointNum = 6;
    settings_.SegmentMinPointNum = 4;
    settings_.BorderMethod = 1;
    settings_.parallel = 3.5;
    settings_.perpendicular = 2.0;
  }

  frame::Settings settings_{};
};

// Runs `operation` with every heap request of it failing in turn, and then undisturbed. Returns how
// many requests it makes.
template <typename Operation>
int32_t ExpectOutOfMemoryAtEveryRequest(Operation operation) {
  int32_t requests = 0;
  int32_t status = STATUS_OK;
  const auto check = [&](int32_t request) {
    EXPECT_EQ(status, OUT_OF_MEMORY) << "request " << request;
    ++requests;
  };
  ForEachHeapFailure([&] { status = operation(); }, check);
  EXPECT_EQ(status, STATUS_OK);
  return requests;
}

// A trace of segments of `points` equal points each.
inline void FillTrace(SideTrace* side, const std::vector<frame::PixelPoint>& means,
                      int32_t points = 2) {
  const auto count = static_cast<int32_t>(means.size());
  ASSERT_TRUE(side->points.Allocate(means.size() * static_cast<size_t>(points)));
  ASSERT_TRUE(side->list.segments.Allocate(means.size()));
  side->pointCount = count * points;
  side->list.segmentCount = count;
  side->list.pointTotal = side->pointCount;
  frame::PixelPoint* point = side->points.data();
  for (size_t i = 0; i < means.size(); ++i) {
    side->list.segments[i] = {points, point, 0, means[i].x, means[i].y};
    for (int32_t k = 0; k < points; ++k) *point++ = means[i];
  }
}

// `count` positions from (x, y) in steps of (dx, dy).
inline std::vector<frame::PixelPoint> Line(int32_t count, int32_t x, int32_t y, int32_t dx,
                                           int32_t dy) {
  std::vector<frame::PixelPoint> points;
  points.reserve(static_cast<size_t>(count));
  for (int32_t i = 0; i < count; ++i) points.push_back({x + i * dx, y + i * dy});
  return points;
}

inline std::vector<frame::PixelPoint> Transposed(std::vector<frame::PixelPoint> points) {
  for (frame::PixelPoint& point : points) std::swap(point.x, point.y);
  return points;
}

inline std::vector<frame::PixelPoint> MeansOf(const SegmentList& list) {
  std::vector<frame::PixelPoint> means;
  for (const BorderSegment& segment : list.view()) means.push_back({segment.meanX, segment.meanY});
  return means;
}

}  // namespace vorlanepic::testing
