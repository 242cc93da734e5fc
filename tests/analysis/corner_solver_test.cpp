#include "analysis/corner_solver.h"

#include <cmath>
#include <deque>
#include <tuple>
#include <utility>

#include "analysis/border_drawing.h"

namespace vorlanepic::testing {

using namespace analysis;
namespace {

constexpr double kDegree = 0.017453292222222222;
constexpr double kDegreesPerRadian = 57.295780490442965;

// An upright document in the columns left..right and the rows top..bottom.
struct Box {
  int32_t left;
  int32_t top;
  int32_t right;
  int32_t bottom;
};

// A document of four edges in an image of 200 x 240, each the given points, two of each.
class SolveCornersTest : public AnalysisTest {
 protected:
  SolveCornersTest() { Upright(); }

  void SetEdge(EdgeLine* edge, const std::vector<frame::PixelPoint>& points, int32_t each = 2) {
    SideTrace& trace = traces_.emplace_back();
    FillTrace(&trace, points, each);
    edge->list = std::move(trace.list);
  }

  // Top y = 20, left x = 30, bottom y = 140, right x = 130.
  void Upright() {
    SetEdge(&edges_.e1, {{120, 20}, {40, 20}});
    SetEdge(&edges_.e2, {{30, 30}, {30, 130}});
    SetEdge(&edges_.e3, {{120, 140}, {40, 140}});
    SetEdge(&edges_.e4, {{130, 30}, {130, 130}});
    extremes_ = {
        .leftmost = {28, 60}, .rightmost = {133, 90}, .topmost = {70, 18}, .bottommost = {80, 143}};
    settings_.ExtremeAnchorFlag = 0.0;
  }

  // The same document seen with a quarter turn of the codes: left, bottom, right, top.
  void UprightOnPathY() {
    Upright();
    std::swap(edges_.e1, edges_.e2);
    std::swap(edges_.e2, edges_.e3);
    std::swap(edges_.e3, edges_.e4);
    extremes_.leftmost.y = 90;
    extremes_.rightmost.y = 60;
  }

  EdgeLine* Edge(int32_t number) {
    EdgeLine* edges[] = {nullptr, &edges_.e1, &edges_.e2, &edges_.e3, &edges_.e4};
    return edges[number];
  }

  int32_t Solve(int32_t cornerOption = 0) {
    geometry_ = {};
    return SolveCorners(settings_, *image_.rec(), cornerOption, extremes_, origin_, &edges_,
                        &geometry_);
  }

  void ExpectCorners(frame::PixelPoint c14, frame::PixelPoint c12, frame::PixelPoint c43,
                     frame::PixelPoint c23) {
    EXPECT_EQ(geometry_.corners.c14, c14);
    EXPECT_EQ(geometry_.corners.c12, c12);
    EXPECT_EQ(geometry_.corners.c43, c43);
    EXPECT_EQ(geometry_.corners.c23, c23);
  }

  void ExpectUprightBox(const Box& box) {
    EXPECT_EQ(geometry_.spans.top, box.top);
    EXPECT_EQ(geometry_.spans.bottom, box.bottom);
    EXPECT_EQ(geometry_.spans.spans[80].left, box.left);
    EXPECT_EQ(geometry_.spans.spans[80].right, box.right);
    EXPECT_EQ(geometry_.outWidth, box.right - box.left);
    EXPECT_EQ(geometry_.outHeight, box.bottom - box.top);
    const frame::PixelPoint center{(box.left + box.right + 1) / 2, (box.top + box.bottom + 1) / 2};
    EXPECT_EQ(geometry_.center, center);
    EXPECT_EQ(geometry_.angle, 0.0);
  }

  TestImage image_{200, 240, 8};
  std::deque<SideTrace> traces_;  // the edges' segments point into them
  ExtremePoints extremes_{};
  EdgeOrigin origin_;
  DocumentEdges edges_;
  DocumentGeometry geometry_;
};

TEST_F(SolveCornersTest, MeasuresAnUprightDocument) {
  ASSERT_EQ(Solve(), STATUS_OK);
  ExpectCorners({130, 20}, {30, 20}, {130, 140}, {30, 140});
  ExpectUprightBox({30, 20, 130, 140});
  // The corner option moves every edge outwards by twice.
  ASSERT_EQ(Solve(3), STATUS_OK);
  ExpectCorners({136, 14}, {24, 14}, {136, 146}, {24, 146});
  EXPECT_EQ(geometry_.outWidth, 112);
  EXPECT_EQ(geometry_.outHeight, 132);
  ASSERT_EQ(Solve(-3), STATUS_OK);
  EXPECT_EQ(geometry_.outWidth, 88);
  ASSERT_EQ(Solve(-30), BORDER_NOT_FOUND);  // top and bottom in row 80
}

// Left x = 30 + y / 20, right x = 130 + y / 20, top y = 30 - x / 20, bottom y = 145 - x / 20: the
// sides stand at arctan(20), 87.14 degrees, so the turn is 2.86 degrees.
TEST_F(SolveCornersTest, MeasuresATurnedDocument) {
  SetEdge(&edges_.e1, {{120, 24}, {40, 28}});
  SetEdge(&edges_.e2, {{32, 40}, {36, 120}});
  SetEdge(&edges_.e3, {{120, 139}, {40, 143}});
  SetEdge(&edges_.e4, {{132, 40}, {136, 120}});
  ASSERT_EQ(Solve(), STATUS_OK);
  EXPECT_NEAR(geometry_.angle, (90 - std::atan(20) * kDegreesPerRadian) * kDegree, 1e-12);
  // On the top edge x = 131.5 / 1.0025 = 131.17 and 31.5 / 1.0025 = 31.42, on the bottom edge
  // 137.25 / 1.0025 = 136.91 and 37.25 / 1.0025 = 37.16.
  ExpectCorners({131, 23}, {31, 28}, {137, 138}, {37, 143});
  EXPECT_EQ(geometry_.center, (frame::PixelPoint{84, 83}));
  EXPECT_EQ(geometry_.outWidth, 100);   // sqrt(100^2 + 5^2) = 100.1
  EXPECT_EQ(geometry_.outHeight, 115);  // sqrt(6^2 + 115^2) = 115.2
  // Limits lie on the top edge, x = 100 at y = 25, the left one, and the bottom edge at y = 140.
  EXPECT_EQ(geometry_.spans.top, 23);
  EXPECT_EQ(geometry_.spans.bottom, 143);
  EXPECT_EQ(geometry_.spans.spans[25].left, 100);
  EXPECT_EQ(geometry_.spans.spans[28].left, 31);
  EXPECT_EQ(geometry_.spans.spans[60].left, 33);
  EXPECT_EQ(geometry_.spans.spans[140].right, 100);
}

// Squares about (100, 120) with sides of direction (dx, dy) and (-dy, dx).
TEST_F(SolveCornersTest, TurnsToTheNearestAxis) {
  for (const auto& [dx, dy, degrees] : {std::tuple{2, 40, 2.862405},
                                        {-2, 40, 357.137595},
                                        {30, 36, 39.805571},
                                        {-30, 36, 320.194429}}) {
    const frame::PixelPoint top{100 + dy - dx, 120 - dx - dy};
    const frame::PixelPoint left{100 - dx - dy, 120 - dy + dx};
    const frame::PixelPoint bottom{100 + dx - dy, 120 + dy + dx};
    const frame::PixelPoint right{100 + dx + dy, 120 + dy - dx};
    SetEdge(&edges_.e1, {top, left});
    SetEdge(&edges_.e2, {left, bottom});
    SetEdge(&edges_.e3, {right, bottom});
    SetEdge(&edges_.e4, {top, right});
    ASSERT_EQ(Solve(), STATUS_OK);
    EXPECT_NEAR(geometry_.angle * kDegreesPerRadian, degrees, 1e-4);
  }
}

TEST_F(SolveCornersTest, AFailedFitTakesAnExtremeRowOrTheFrame) {
  struct Case {
    bool isPathX;
    int32_t edge;  // the one that fails
    EdgeSource source;
    int32_t top;
    int32_t bottom;
  };
  constexpr EdgeSource kWhole = EdgeSource::kWholeSides;
  constexpr EdgeSource kBeyond = EdgeSource::kBeyondExtremes;
  const Case cases[] = {{true, 1, kBeyond, 60, 140},  {true, 1, kWhole, 0, 140},
                        {true, 3, kBeyond, 20, 90},   {false, 2, kWhole, 20, 239},
                        {false, 4, kBeyond, 60, 140}, {false, 2, kBeyond, 20, 90}};
  for (const Case& c : cases) {
    SCOPED_TRACE(&c - cases);
    c.isPathX ? Upright() : UprightOnPathY();
    SetEdge(Edge(c.edge), {{80, 80}});
    origin_.source = c.source;
    ASSERT_EQ(Solve(), STATUS_OK);
    ExpectUprightBox({30, c.top, 130, c.bottom});
    EXPECT_FALSE(geometry_.isPairUnfitted);
  }
}

// Extremes are columns 28 and 133 and rows 18 and 143. Between equals E2 is the reference.
TEST_F(SolveCornersTest, LaysAllEdgesButTheOneOfMostPointsThroughTheExtremes) {
  struct Case {
    bool isPathX;
    int32_t edge;  // the one of most points; 0: all have as many
    Box box;
  };
  const Case cases[] = {{true, 0, {30, 18, 133, 143}},  {true, 1, {28, 20, 133, 143}},
                        {true, 2, {30, 18, 133, 143}},  {true, 3, {28, 18, 133, 140}},
                        {true, 4, {28, 18, 130, 143}},  {false, 0, {28, 18, 133, 140}},
                        {false, 1, {30, 18, 133, 143}}, {false, 2, {28, 18, 133, 140}},
                        {false, 3, {28, 18, 130, 143}}, {false, 4, {28, 20, 133, 143}}};
  for (const Case& c : cases) {
    SCOPED_TRACE(&c - cases);
    c.isPathX ? Upright() : UprightOnPathY();
    if (c.edge != 0) SetEdge(Edge(c.edge), MeansOf(Edge(c.edge)->list), 3);
    settings_.ExtremeAnchorFlag = 1.0;
    ASSERT_EQ(Solve(), STATUS_OK);
    ExpectUprightBox(c.box);
  }
}

TEST_F(SolveCornersTest, PassesAFailedFitOfTheReferenceOrTheOtherPairOn) {
  SetEdge(&edges_.e4, {{130, 80}});
  EXPECT_EQ(Solve(), ANGLE_NOT_FOUND);
  UprightOnPathY();
  SetEdge(&edges_.e1, {{30, 80}});
  EXPECT_EQ(Solve(), ANGLE_NOT_FOUND);
  Upright();
  SetEdge(&edges_.e1, {{80, 20}}, 6);
  SetEdge(&edges_.e3, {{80, 140}});
  EXPECT_EQ(Solve(), BAD_ARGUMENT);
  // When both tolerable fits fail, the extremes anchor all edges but the left one.
  SetEdge(&edges_.e1, {{80, 20}});
  ASSERT_EQ(Solve(), STATUS_OK);
  EXPECT_TRUE(geometry_.isPairUnfitted);
  ExpectUprightBox({30, 18, 133, 143});
}

// Slanted sides stand at arctan(100 / 15), 81.5 degrees, the slanted bottom at 14 degrees.
TEST_F(SolveCornersTest, MakesOppositeEdgesParallel) {
  using Points = std::vector<frame::PixelPoint>;
  struct Case {
    const char* name;
    Points left;
    Points bottom;
    Points right;
    int32_t status;
    Box box{};
  };
  const Points left = {{30, 30}, {30, 130}};
  const Points right = {{130, 30}, {130, 130}};
  const Points bottom = {{120, 140}, {40, 140}};
  const Points slantedLeft = {{30, 30}, {45, 130}};
  const Points slantedRight = {{130, 30}, {145, 130}};
  const Case cases[] = {
      {"right takes left", left, bottom, slantedRight, 0, {30, 20, 137, 140}},
      {"left takes right", slantedLeft, bottom, right, 0, {37, 20, 130, 140}},
      {"both take the top", slantedLeft, bottom, {{130, 30}, {115, 130}}, 0, {37, 20, 122, 140}},
      {"bottom takes top", left, {{120, 150}, {40, 130}}, right, 0, {30, 20, 130, 140}},
      {"no rectangle", slantedLeft, bottom, slantedRight, BORDER_NOT_FOUND},
      {"centre left of it", {{-200, 30}, {-200, 130}}, bottom, right, BORDER_NOT_FOUND},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    SetEdge(&edges_.e2, c.left);
    SetEdge(&edges_.e3, c.bottom);
    SetEdge(&edges_.e4, c.right);
    ASSERT_EQ(Solve(), c.status);
    if (c.status == STATUS_OK) ExpectUprightBox(c.box);
  }
}

TEST_F(SolveCornersTest, RefusesWhatItCannotSolve) {
  const FailingHeap heap(0);
  EXPECT_EQ(Solve(), OUT_OF_MEMORY);
  EXPECT_EQ(geometry_.outWidth, 100);  // written before the spans
}

}  // namespace
}  // namespace vorlanepic::testing
