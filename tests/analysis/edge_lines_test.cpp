#include "analysis/edge_lines.h"

#include <tuple>

#include "analysis/border_drawing.h"

namespace vorlanepic::testing {

using namespace analysis;
namespace {

class BuildEdgesTest : public AnalysisTest {
 protected:
  int32_t Build() {
    edges_ = {};
    origin_ = {};
    return BuildEdges(settings_, *image_.rec(), extremes_, traces_, &origin_, &edges_);
  }

  // 30 segments a side of a page that stands on its corner; all run down to the right, so that
  // every part of them is a straight line.
  void TraceDiamond() {
    FillTrace(&traces_.left, Line(30, 100, 100, 6, 12));
    FillTrace(&traces_.right, Line(30, 300, 100, 6, 12));
    FillTrace(&traces_.top, Line(30, 500, 300, -12, -6));
    FillTrace(&traces_.bottom, Line(30, 500, 600, -12, -6));
    extremes_ = {{100, 350}, {500, 300}, {400, 0}, {200, 700},
                 {15, 16},   {17, 18},   {19, 13}, {20, 12}};
  }

  // 30 segments a side of an upright page, with the leftmost point low.
  void TraceUpright() {
    FillTrace(&traces_.left, Line(30, 100, 20, 0, 12));
    FillTrace(&traces_.right, Line(30, 500, 20, 0, 12));
    FillTrace(&traces_.top, Line(30, 500, 20, -12, 0));
    FillTrace(&traces_.bottom, Line(30, 500, 380, -12, 0));
    extremes_ = {.leftmost = {100, 30},
                 .rightmost = {500, 30},
                 .topmost = {300, 20},
                 .bottommost = {300, 380}};
  }

  auto Sides() { return std::tie(traces_.left, traces_.right, traces_.top, traces_.bottom); }

  const SideTrace& TraceOf(Side side) {
    const SideTrace* const sides[] = {&traces_.left, &traces_.right, &traces_.top, &traces_.bottom};
    return *sides[static_cast<size_t>(side)];
  }

  struct Part {
    const SideTrace& side;
    size_t first;
    int32_t count;
  };
  void ExpectParts(const Part (&parts)[4]) {
    const EdgeLine* edges[] = {&edges_.e1, &edges_.e2, &edges_.e3, &edges_.e4};
    for (size_t i = 0; i < 4; ++i) {
      ASSERT_EQ(edges[i]->list.segmentCount, parts[i].count) << "edge " << i + 1;
      EXPECT_EQ(&TraceOf(edges[i]->side), &parts[i].side);
      EXPECT_EQ(edges[i]->list.segments[0].first, parts[i].side.list.segments[parts[i].first].first)
          << "edge " << i + 1;
    }
  }

  TestImage image_{800, 800, 8};
  ExtremePoints extremes_{};
  EdgeOrigin origin_;
  BorderTraces traces_;
  DocumentEdges edges_;
};

// The trim is 32 / 6 = 5 segments. The page touches row 0 and its sides stand at 63 degrees, so
// they do not count as straight.
TEST_F(BuildEdgesTest, TakesTheSidesBeyondTheExtremesOfATurnedPage) {
  TraceDiamond();
  ASSERT_EQ(Build(), STATUS_OK);
  EXPECT_EQ(origin_.source, EdgeSource::kBeyondExtremes);
  EXPECT_EQ(origin_.arrangement, Arrangement::kLeftFirst);  // 700 - 350 is not more than 350 - 0
  const auto& [left, right, top, bottom] = Sides();
  ExpectParts({{left, 5, 5}, {bottom, 17, 8}, {right, 23, 2}, {top, 5, 9}});
  extremes_.leftmost.y = 300;
  ASSERT_EQ(Build(), STATUS_OK);
  EXPECT_EQ(origin_.arrangement, Arrangement::kTopFirst);
  ExpectParts({{top, 18, 7}, {left, 21, 4}, {bottom, 5, 10}, {right, 5, 7}});
}

TEST_F(BuildEdgesTest, TakesWholeSidesOfAStraightPage) {
  TraceUpright();
  ASSERT_EQ(Build(), STATUS_OK);
  EXPECT_EQ(origin_.source, EdgeSource::kWholeSides);
  EXPECT_EQ(origin_.arrangement, Arrangement::kUndecided);
  const auto& [left, right, top, bottom] = Sides();
  ExpectParts({{top, 5, 20}, {left, 5, 20}, {bottom, 5, 20}, {right, 5, 20}});
  settings_.BorderMethod = 3;
  ASSERT_EQ(Build(), STATUS_OK);
  EXPECT_EQ(origin_.arrangement, Arrangement::kTopFirst);
  extremes_.leftmost.y = 300;
  ASSERT_EQ(Build(), STATUS_OK);
  EXPECT_EQ(origin_.arrangement, Arrangement::kLeftFirst);
  ExpectParts({{left, 5, 20}, {bottom, 5, 20}, {right, 5, 20}, {top, 5, 20}});
  // The trim goes by the points of a segment: 32 / 10 = 3, then more than there are.
  settings_.SegmentPointNum = 10;
  ASSERT_EQ(Build(), STATUS_OK);
  EXPECT_EQ(edges_.e1.list.segmentCount, 24);
  settings_.SegmentPointNum = 1;
  EXPECT_EQ(Build(), BAD_ARGUMENT);
}

// 10 segments 12 apart along x = 100; some lie 50 aside, paired so that the halves' means stay at
// 100. With segments 1, 3, 6, 8 aside 6 of 10 are near, which is not more than 0.6 of them. With 1,
// 3 and 6 aside the chord runs from (100, 44) to (110, 104), at 80.5 degrees, and 7 are near.
std::vector<frame::PixelPoint> Crooked(bool fourAside) {
  std::vector<frame::PixelPoint> side = Line(10, 100, 20, 0, 12);
  side[1].x += 50;
  side[3].x -= 50;
  side[6].x += 50;
  if (fourAside) side[8].x -= 50;
  return side;
}

TEST_F(BuildEdgesTest, StraightnessIsJudgedOnTheLongerSidesOrTheUprightOnes) {
  struct Case {
    std::vector<frame::PixelPoint> left;
    std::vector<frame::PixelPoint> top;
    int32_t width;  // of the page; it is 400 high
    int32_t topmost;
    EdgeSource source;
  };
  const std::vector<frame::PixelPoint> level = Line(10, 20, 100, 12, 0);
  const std::vector<frame::PixelPoint> upright = Line(10, 100, 20, 0, 12);
  const std::vector<frame::PixelPoint> slanted = Line(10, 100, 20, 12, 60);  // at 78.7 degrees
  const std::vector<frame::PixelPoint> crookedTop = Transposed(Crooked(true));
  const Case cases[] = {
      {Crooked(true), level, 300, 9, EdgeSource::kBeyondExtremes},
      {Crooked(false), level, 300, 9, EdgeSource::kWholeSides},
      {upright, crookedTop, 401, 9, EdgeSource::kBeyondExtremes},
      // At the frame only the upright sides count, and their angle: a slanted one is not straight.
      {upright, crookedTop, 401, 0, EdgeSource::kWholeSides},
      {slanted, level, 300, 9, EdgeSource::kWholeSides},
      {slanted, level, 300, 399, EdgeSource::kBeyondExtremes},
  };
  for (const Case& c : cases) {
    FillTrace(&traces_.left, c.left);
    FillTrace(&traces_.right, c.left);
    FillTrace(&traces_.top, c.top);
    FillTrace(&traces_.bottom, c.top);
    extremes_ = {.leftmost = {10, 200},
                 .rightmost = {10 + c.width, 200},
                 .topmost = {200, c.topmost},
                 .bottommost = {200, c.topmost + 400}};
    EXPECT_EQ(Build(), BAD_ARGUMENT);  // the trim leaves no segment
    EXPECT_EQ(origin_.source, c.source) << "case " << &c - cases;
  }
}

TEST_F(BuildEdgesTest, PassesFailingFitsAndChecksOn) {
  TraceUpright();
  extremes_.rightmost.x = 400;  // taller than wide
  FillTrace(&traces_.right, Line(1, 500, 100, 0, 0));
  EXPECT_EQ(Build(), BAD_ARGUMENT);
  FillTrace(&traces_.right, Line(4, 500, 100, 0, 0));
  EXPECT_EQ(Build(), ANGLE_NOT_FOUND);
  TraceDiamond();
  ExpectOutOfMemoryAtEveryRequest([this] { return Build(); });
}

}  // namespace
}  // namespace vorlanepic::testing
