#include "analysis/corner_solver.h"

#include <cmath>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "analysis/border_drawing.h"
#include "support/failing_heap.h"
#include "support/failing_imgbuf.h"

namespace vorlanepic {
namespace {

using testing::FillTrace;
using testing::TestImage;

constexpr double kDegree = 0.017453292222222222;
constexpr double kDegreesPerRadian = 57.295780490442965;

// A document of four edges in an image of 200 x 240, each the given points, two of each.
class SolveCornersTest : public testing::AnalysisTest {
 protected:
  SolveCornersTest() { Upright(); }

  void SetEdge(EdgeLine* edge, const std::vector<EdgePoint>& points, int32_t each = 2) {
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
    extremes_ = {{28, 60}, {133, 90}, {70, 18}, {80, 143}};
  }

  // The same document seen with a quarter turn of the codes: left, bottom, right, top.
  void UprightOnPathY() {
    SetEdge(&edges_.e1, {{30, 30}, {30, 130}});
    SetEdge(&edges_.e2, {{120, 140}, {40, 140}});
    SetEdge(&edges_.e3, {{130, 30}, {130, 130}});
    SetEdge(&edges_.e4, {{120, 20}, {40, 20}});
    extremes_ = {{28, 90}, {133, 60}, {70, 18}, {80, 143}};
  }

  int32_t Solve(int32_t cornerOption = 0) {
    geometry_ = {};
    return SolveCorners(image_.rec(), cornerOption, &extremes_, straightness_, &edges_, &geometry_);
  }

  void ExpectCorners(EdgePoint c14, EdgePoint c12, EdgePoint c43, EdgePoint c23) {
    EXPECT_EQ(geometry_.corners.c14, c14);
    EXPECT_EQ(geometry_.corners.c12, c12);
    EXPECT_EQ(geometry_.corners.c43, c43);
    EXPECT_EQ(geometry_.corners.c23, c23);
  }

  TestImage image_{200, 240, 8};
  std::vector<SideTrace> traces_ = [] {
    std::vector<SideTrace> traces;
    traces.reserve(32);  // segments point into them
    return traces;
  }();
  ExtremePoints extremes_{};
  int32_t straightness_ = 1;
  DocumentEdges edges_;
  DocumentGeometry geometry_;
};

TEST_F(SolveCornersTest, MeasuresAnUprightDocument) {
  ASSERT_EQ(Solve(), STATUS_OK);
  ExpectCorners({130, 20}, {30, 20}, {130, 140}, {30, 140});
  EXPECT_EQ(geometry_.center, (EdgePoint{80, 80}));
  EXPECT_EQ(geometry_.angle, 0.0);
  EXPECT_EQ(geometry_.outWidth, 100);
  EXPECT_EQ(geometry_.outHeight, 120);
  EXPECT_EQ(geometry_.spans.top, 20);
  EXPECT_EQ(geometry_.spans.bottom, 140);
  EXPECT_EQ(geometry_.spans.count, 121);
  for (int32_t y = 20; y <= 140; ++y) {
    EXPECT_EQ(geometry_.spans.spans[static_cast<size_t>(y)].left, 30);
    EXPECT_EQ(geometry_.spans.spans[static_cast<size_t>(y)].right, 130);
  }
}

TEST_F(SolveCornersTest, CornerOptionMovesEveryEdgeOutwardsByTwice) {
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
  EXPECT_EQ(geometry_.center, (EdgePoint{84, 83}));
  EXPECT_EQ(geometry_.outWidth, 100);   // sqrt(100^2 + 5^2) = 100.1
  EXPECT_EQ(geometry_.outHeight, 115);  // sqrt(6^2 + 115^2) = 115.2
  // Above the left corner the left limit lies on the top edge: y = 25 gives x = 100; below it on
  // the left edge: y = 60 gives 33.
  EXPECT_EQ(geometry_.spans.top, 23);
  EXPECT_EQ(geometry_.spans.bottom, 143);
  EXPECT_EQ(geometry_.spans.spans[25].left, 100);
  EXPECT_EQ(geometry_.spans.spans[60].left, 33);
  EXPECT_EQ(geometry_.spans.spans[60].right, 133);
  // Below the right corner the right limit lies on the bottom edge: y = 140 gives x = 100.
  EXPECT_EQ(geometry_.spans.spans[140].right, 100);
}

// A square about (100, 120) with sides of direction (dx, dy), on the path of its arrangement.
struct DirectionCase {
  const char* name;
  int32_t dx;
  int32_t dy;
  double turn;  // degrees that the direction is off the nearest axis, clockwise
};

class TurnTest : public SolveCornersTest, public ::testing::WithParamInterface<DirectionCase> {};

TEST_P(TurnTest, TurnsToTheNearestAxis) {
  const auto& [name, dx, dy, turn] = GetParam();
  // Corners at the centre plus and minus (dx, dy) and (-dy, dx).
  const EdgePoint top{100 + dy - dx, 120 - dx - dy};
  const EdgePoint left{100 - dx - dy, 120 - dy + dx};
  const EdgePoint bottom{100 + dx - dy, 120 + dy + dx};
  const EdgePoint right{100 + dx + dy, 120 + dy - dx};
  SetEdge(&edges_.e1, {top, left});
  SetEdge(&edges_.e2, {left, bottom});
  SetEdge(&edges_.e3, {right, bottom});
  SetEdge(&edges_.e4, {top, right});
  ASSERT_EQ(Solve(), STATUS_OK);
  EXPECT_NEAR(geometry_.angle * kDegreesPerRadian, turn, 1e-4);
}

INSTANTIATE_TEST_SUITE_P(Squares, TurnTest,
                         ::testing::Values(DirectionCase{"FewDegreesOneWay", 2, 40, 2.862405},
                                           DirectionCase{"FewDegreesTheOther", -2, 40, 357.137595},
                                           DirectionCase{"FortyDegreesOneWay", 30, 36, 39.805571},
                                           DirectionCase{"FortyDegreesTheOther", -30, 36,
                                                         320.194429}),
                         [](const auto& square) { return std::string(square.param.name); });

// An upright document in the columns left..right and the rows top..bottom.
struct Box {
  int32_t left;
  int32_t top;
  int32_t right;
  int32_t bottom;
};

// Which edge is special: 1..4, 0 for none.
struct EdgeCase {
  const char* name;
  bool isPathX;
  int32_t edge;
  int32_t straightness;
  Box box;
};

class DocumentBoxTest : public SolveCornersTest, public ::testing::WithParamInterface<EdgeCase> {
 protected:
  EdgeLine* SpecialEdge() {
    EdgeLine* edges[] = {nullptr, &edges_.e1, &edges_.e2, &edges_.e3, &edges_.e4};
    return edges[GetParam().edge];
  }

  void ExpectBox() {
    const Box& box = GetParam().box;
    ASSERT_EQ(Solve(), STATUS_OK);
    EXPECT_EQ(geometry_.spans.top, box.top);
    EXPECT_EQ(geometry_.spans.bottom, box.bottom);
    EXPECT_EQ(geometry_.spans.spans[80].left, box.left);
    EXPECT_EQ(geometry_.spans.spans[80].right, box.right);
    EXPECT_EQ(geometry_.outWidth, box.right - box.left);
    EXPECT_EQ(geometry_.outHeight, box.bottom - box.top);
    EXPECT_EQ(geometry_.angle, 0.0);
  }
};

class FailedFitTest : public DocumentBoxTest {};

TEST_P(FailedFitTest, TakesTheOppositeDirectionThroughAnExtremeRowOrTheFrame) {
  if (!GetParam().isPathX) UprightOnPathY();
  straightness_ = GetParam().straightness;
  if (SpecialEdge() != nullptr) SetEdge(SpecialEdge(), {{80, 80}});
  ExpectBox();
  EXPECT_EQ(settings.ExtremeAnchorFlag, 0.0);
}

INSTANTIATE_TEST_SUITE_P(
    Edges, FailedFitTest,
    ::testing::Values(EdgeCase{"NoneOnPathY", false, 0, 1, {30, 20, 130, 140}},
                      EdgeCase{"TopOnPathX", true, 1, 1, {30, 60, 130, 140}},
                      EdgeCase{"TopOnPathXStraight", true, 1, 0, {30, 0, 130, 140}},
                      EdgeCase{"BottomOnPathX", true, 3, 1, {30, 20, 130, 90}},
                      EdgeCase{"BottomOnPathXStraight", true, 3, 0, {30, 20, 130, 239}},
                      EdgeCase{"BottomOnPathY", false, 2, 1, {30, 20, 130, 90}},
                      EdgeCase{"BottomOnPathYStraight", false, 2, 0, {30, 20, 130, 239}},
                      EdgeCase{"TopOnPathY", false, 4, 1, {30, 60, 130, 140}},
                      EdgeCase{"TopOnPathYStraight", false, 4, 0, {30, 0, 130, 140}}),
    [](const auto& edge) { return std::string(edge.param.name); });

class ExtremeAnchorTest : public DocumentBoxTest {};

TEST_P(ExtremeAnchorTest, LaysAllEdgesButTheOneOfMostPointsThroughTheExtremes) {
  if (!GetParam().isPathX) UprightOnPathY();
  if (SpecialEdge() != nullptr) {
    const std::vector<EdgePoint> means = testing::MeansOf(SpecialEdge()->list);
    SetEdge(SpecialEdge(), means, 3);
  }
  settings.ExtremeAnchorFlag = 1.0;
  ExpectBox();
}

// Extremes are columns 28 and 133 and rows 18 and 143. Between equals E2 is the reference.
INSTANTIATE_TEST_SUITE_P(
    References, ExtremeAnchorTest,
    ::testing::Values(EdgeCase{"EqualsOnPathX", true, 0, 1, {30, 18, 133, 143}},
                      EdgeCase{"Edge1OnPathX", true, 1, 1, {28, 20, 133, 143}},
                      EdgeCase{"Edge2OnPathX", true, 2, 1, {30, 18, 133, 143}},
                      EdgeCase{"Edge3OnPathX", true, 3, 1, {28, 18, 133, 140}},
                      EdgeCase{"Edge4OnPathX", true, 4, 1, {28, 18, 130, 143}},
                      EdgeCase{"EqualsOnPathY", false, 0, 1, {28, 18, 133, 140}},
                      EdgeCase{"Edge1OnPathY", false, 1, 1, {30, 18, 133, 143}},
                      EdgeCase{"Edge2OnPathY", false, 2, 1, {28, 18, 133, 140}},
                      EdgeCase{"Edge3OnPathY", false, 3, 1, {28, 18, 130, 143}},
                      EdgeCase{"Edge4OnPathY", false, 4, 1, {28, 20, 133, 143}}),
    [](const auto& edge) { return std::string(edge.param.name); });

TEST_F(SolveCornersTest, AnchorsAtTheExtremesWhenBothTolerableFitsFail) {
  SetEdge(&edges_.e1, {{80, 20}});
  SetEdge(&edges_.e3, {{80, 140}});
  ASSERT_EQ(Solve(), STATUS_OK);
  EXPECT_EQ(settings.ExtremeAnchorFlag, 1.0);
  ExpectCorners({133, 18}, {30, 18}, {133, 143}, {30, 143});
}

TEST_F(SolveCornersTest, AnUnfittedReferenceIsNoLine) {
  SetEdge(&edges_.e1, {{80, 20}}, 6);
  SetEdge(&edges_.e3, {{80, 140}});
  EXPECT_EQ(Solve(), BAD_ARGUMENT);
}

TEST_F(SolveCornersTest, PassesAFailedFitOfTheOtherPairOn) {
  SetEdge(&edges_.e4, {{130, 80}});
  EXPECT_EQ(Solve(), ANGLE_NOT_FOUND);
  UprightOnPathY();
  SetEdge(&edges_.e1, {{30, 80}});
  EXPECT_EQ(Solve(), ANGLE_NOT_FOUND);
}

// Slanted sides stand at arctan(100 / 15), 81.5 degrees, the slanted bottom at 14 degrees.
struct RepairCase {
  const char* name;
  std::vector<EdgePoint> left;
  std::vector<EdgePoint> bottom;
  std::vector<EdgePoint> right;
  int32_t status;
  Box box;
};

const std::vector<EdgePoint> kLeft = {{30, 30}, {30, 130}};
const std::vector<EdgePoint> kRight = {{130, 30}, {130, 130}};
const std::vector<EdgePoint> kBottom = {{120, 140}, {40, 140}};

class RepairTest : public SolveCornersTest, public ::testing::WithParamInterface<RepairCase> {};

TEST_P(RepairTest, MakesOppositeEdgesParallel) {
  const auto& [name, left, bottom, right, status, box] = GetParam();
  SetEdge(&edges_.e2, left);
  SetEdge(&edges_.e3, bottom);
  SetEdge(&edges_.e4, right);
  ASSERT_EQ(Solve(), status);
  if (status != STATUS_OK) return;
  ExpectCorners({box.right, box.top}, {box.left, box.top}, {box.right, box.bottom},
                {box.left, box.bottom});
}

INSTANTIATE_TEST_SUITE_P(
    Edges, RepairTest,
    ::testing::Values(
        RepairCase{
            "RightTakesLeft", kLeft, kBottom, {{130, 30}, {145, 130}}, 0, {30, 20, 137, 140}},
        RepairCase{"LeftTakesRight", {{30, 30}, {45, 130}}, kBottom, kRight, 0, {37, 20, 130, 140}},
        RepairCase{"BothTakeTheTop",
                   {{30, 30}, {45, 130}},
                   kBottom,
                   {{130, 30}, {115, 130}},
                   0,
                   {37, 20, 122, 140}},
        RepairCase{"BottomTakesTop", kLeft, {{120, 150}, {40, 130}}, kRight, 0, {30, 20, 130, 140}},
        RepairCase{"Rhomboid",
                   {{30, 30}, {45, 130}},
                   kBottom,
                   {{130, 30}, {145, 130}},
                   BORDER_NOT_FOUND,
                   {}},
        RepairCase{"CentreLeftOfTheImage",
                   {{-200, 30}, {-200, 130}},
                   kBottom,
                   kRight,
                   BORDER_NOT_FOUND,
                   {}}),
    [](const auto& edges) { return std::string(edges.param.name); });

TEST_F(SolveCornersTest, RefusesWhatItCannotSolve) {
  EXPECT_EQ(SolveCorners(image_.rec(), 0, &extremes_, 1, nullptr, &geometry_), BAD_ARGUMENT);
  EXPECT_EQ(SolveCorners(image_.rec(), 0, &extremes_, 1, &edges_, nullptr), BAD_ARGUMENT);
  {
    testing::FailingImgbuf imgbuf;
    imgbuf.FailCheck(0, 77);
    EXPECT_EQ(Solve(), 77);
  }
  {
    const testing::FailingHeap heap(0);
    EXPECT_EQ(Solve(), OUT_OF_MEMORY);
  }
  EXPECT_EQ(geometry_.outWidth, 100);  // written before the spans
  SetEdge(&edges_.e3, {});
  EXPECT_EQ(Solve(), BAD_ARGUMENT);
}

}  // namespace
}  // namespace vorlanepic
