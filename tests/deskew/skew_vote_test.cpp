#include "deskew/skew_vote.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "deskew/deskew_fixture.h"

namespace vorlanepic::testing {

using namespace deskew;
namespace {

// `count` segments from (x, y) on, each a step further.
std::vector<analysis::BorderSegment> Straight(int32_t count, int32_t x, int32_t y, int32_t stepX,
                                              int32_t stepY) {
  std::vector<analysis::BorderSegment> segments;
  for (int32_t i = 0; i < count; ++i) {
    segments.push_back({1, nullptr, 0, x + i * stepX, y + i * stepY});
  }
  return segments;
}

double DegreesOf(double slope) { return std::atan(slope) * 57.295780490442965; }

class SkewVoteTest : public DeskewTest {
 protected:
  SkewVoteTest() { settings_.ToLineDistance = 8; }

  int32_t Vote(std::span<const analysis::BorderSegment> border, int32_t segmentLen,
               double groupAngle) {
    settings_.SegmentLen = segmentLen;
    settings_.GroupAngle = groupAngle;
    return EstimateBorderAngle(settings_, border, &vote_);
  }

  BorderVote vote_;
};

TEST(FitLineByHalves, LaysALineThroughTheHalvesMeans) {
  struct Case {
    std::vector<frame::PixelPoint> points;
    analysis::BorderLine line;
  };
  const Case cases[] = {
      {{{10, 5}, {10, 9}}, {10.0, 0.0, 90.0, analysis::LineKind::kVertical}},
      {{{3, 7}, {8, 7}}, {7.0, 0.0, 0.0, analysis::LineKind::kHorizontal}},
      // Halves (0, 0) and (10, 5); the line descends: y = 0.5 x.
      {{{0, 0}, {10, 5}}, {0.0, 0.5, DegreesOf(0.5), analysis::LineKind::kGeneral}},
      // One point against two; (4 + 5) / 2 and (7 + 8) / 2 are cut.
      {{{0, 3}, {4, 7}, {5, 8}}, {3.0, 1.0, 45.0, analysis::LineKind::kGeneral}},
  };
  for (const Case& c : cases) {
    analysis::BorderLine line;
    ASSERT_EQ(FitLineByHalves(&line, c.points), STATUS_OK);
    EXPECT_EQ(line.kind, c.line.kind);
    EXPECT_EQ(line.intercept, c.line.intercept);
    EXPECT_EQ(line.slope, c.line.slope);
    EXPECT_NEAR(line.angle, c.line.angle, 1e-5);
  }
  analysis::BorderLine line;
  EXPECT_EQ(FitLineByHalves(&line, std::vector<frame::PixelPoint>{{1, 2}}), BAD_ARGUMENT);
  EXPECT_EQ(FitLineByHalves(&line, std::vector<frame::PixelPoint>{{1, 2}, {5, 6}, {5, 6}, {1, 3}}),
            ANGLE_NOT_FOUND);
}

// 20 chunks of 5 give 17 directions, all the same; the last of them is only the group's limit, so
// 16 chunks vote.
TEST_F(SkewVoteTest, TakesTheAngleOfAStraightBorder) {
  struct Case {
    int32_t stepX;
    int32_t stepY;
    double degrees;
  };
  for (const Case& c : {Case{10, 1, DegreesOf(0.1)}, Case{0, 2, 90.0}, Case{2, 0, 0.0},
                        Case{-1, 10, DegreesOf(-10.0)}}) {
    const auto border = Straight(104, 500, 100, c.stepX, c.stepY);
    ASSERT_EQ(Vote(border, 5, 2.0), STATUS_OK);
    EXPECT_TRUE(vote_.hasAngle);
    EXPECT_NEAR(vote_.angle, c.degrees, 1e-9);
    EXPECT_EQ(vote_.votes, 80);
    EXPECT_EQ(vote_.line.angle, vote_.angle);
  }
}

// Three directions, of which two chunks vote, are the fewest.
TEST_F(SkewVoteTest, NeedsSixChunks) {
  EXPECT_EQ(Vote(Straight(59, 0, 0, 10, 1), 10, 2.0), ANGLE_NOT_FOUND);
  EXPECT_FALSE(vote_.hasAngle);
  ASSERT_EQ(Vote(Straight(60, 0, 0, 10, 1), 10, 2.0), STATUS_OK);
  EXPECT_EQ(vote_.votes, 20);
  EXPECT_EQ(Vote({}, 10, 2.0), ANGLE_NOT_FOUND);
  EXPECT_FALSE(vote_.hasAngle);
}

// One point lies 5 off: near enough to be kept (6), not near enough to be an inlier. Its chunk, the
// ninth, turns the directions 6 and 7 out of the group, and 16 is its limit: 14 chunks are left.
TEST_F(SkewVoteTest, AcceptsALineThatWouldBeFittedForEver) {
  settings_.ToLineDistance = 5;
  auto border = Straight(100, 0, 1000, 2, 0);
  border[40].meanY = 1005;
  ASSERT_EQ(Vote(border, 5, 5.0), STATUS_OK);
  EXPECT_EQ(vote_.angle, 0.0);
  EXPECT_EQ(vote_.votes, 69);
}

// A zigzag 10 wide: the mean distance 5 is the cut, and nothing is nearer.
TEST_F(SkewVoteTest, FailsWhenFewPointsAreLeft) {
  settings_.ToLineDistance = 5;
  auto border = Straight(100, 0, 0, 0, 3);
  for (size_t i = 0; i < border.size(); ++i) border[i].meanX = i % 2 == 0 ? 100 : 110;
  EXPECT_EQ(Vote(border, 10, 2.0), ANGLE_NOT_FOUND);
  EXPECT_FALSE(vote_.hasAngle);
  EXPECT_EQ(vote_.votes, 0);
}

TEST_F(SkewVoteTest, ChecksItsArguments) {
  const auto border = Straight(100, 0, 0, 10, 1);
  for (const int32_t length : {0, 51, -1, 0x10000}) {
    EXPECT_EQ(Vote(border, length, 2.0), BAD_ARGUMENT) << length;
  }
  for (const double angle : {-0.1, 5.1, std::nan("")}) {
    EXPECT_EQ(Vote(border, 5, angle), BAD_ARGUMENT) << angle;
  }
  EXPECT_EQ(Vote(border, 0x10005, 2.0), STATUS_OK);  // its low 16 bits
}

class EstimateSkewFromBordersTest : public SkewVoteTest {
 protected:
  static void Fill(analysis::SideTrace* side,
                   const std::vector<analysis::BorderSegment>& segments) {
    ASSERT_TRUE(side->list.segments.Allocate(segments.size()));
    std::copy(segments.begin(), segments.end(), side->list.segments.span().begin());
    side->list.segmentCount = static_cast<int32_t>(segments.size());
  }

  // 100 segments that descend by y in 100 columns.
  static std::vector<analysis::BorderSegment> Level(int32_t y, int32_t count = 100) {
    return Straight(count, 0, 5000, 100, y);
  }

  int32_t VoteOfAll() {
    settings_.SegmentLen = 5;
    settings_.GroupAngle = 2.0;
    return EstimateSkewFromBorders(settings_, traces_, votes_, &best_, &degrees_);
  }

  analysis::BorderTraces traces_;
  BorderVote votes_[4];
  int32_t best_ = -1;
  double degrees_ = -1.0;
};

TEST_F(EstimateSkewFromBordersTest, TakesTheBorderWithTheMostVotes) {
  Fill(&traces_.top, Level(4, 20));
  EXPECT_EQ(VoteOfAll(), ANGLE_NOT_FOUND);
  EXPECT_EQ(best_, -1);
  Fill(&traces_.top, Level(4));
  ASSERT_EQ(VoteOfAll(), STATUS_OK);
  EXPECT_EQ(best_, 2);
  EXPECT_FALSE(votes_[3].hasAngle);
  Fill(&traces_.left, Straight(100, 900, 0, -2, 100));
  Fill(&traces_.right, Straight(150, 900, 0, -3, 100));
  Fill(&traces_.top, Level(4, 150));
  Fill(&traces_.bottom, Level(5, 120));
  ASSERT_EQ(VoteOfAll(), STATUS_OK);
  EXPECT_EQ(best_, 1);
  EXPECT_EQ(votes_[1].votes, votes_[2].votes);
  EXPECT_NEAR(degrees_, DegreesOf(-100.0 / 3), 1e-9);
}

// Slopes of 1, 2, 3 .. in 100 are 0.57, 1.15, 1.72 .. degrees.
TEST_F(EstimateSkewFromBordersTest, AveragesOppositeBordersThatAgree) {
  struct Case {
    int32_t top;
    int32_t bottom;
    bool mean;
  };
  settings_.AngleMode = 1;
  for (const Case& c : {Case{2, 4, true}, Case{2, 5, false}, Case{-2, -4, true}, Case{-1, 1, false},
                        Case{0, 2, true}, Case{0, -2, true}, Case{0, 3, false}}) {
    Fill(&traces_.top, Level(c.top));
    Fill(&traces_.bottom, Level(c.bottom));
    ASSERT_EQ(VoteOfAll(), STATUS_OK);
    const double top = DegreesOf(c.top * 0.01);
    const double bottom = DegreesOf(c.bottom * 0.01);
    EXPECT_NEAR(degrees_, c.mean ? (top + bottom) / 2 : top, 1e-9) << c.top << ", " << c.bottom;
  }
  Fill(&traces_.bottom, Level(3, 20));  // a pair of which one border failed
  Fill(&traces_.top, Level(2));
  ASSERT_EQ(VoteOfAll(), STATUS_OK);
  EXPECT_NEAR(degrees_, DegreesOf(0.02), 1e-9);
}

}  // namespace
}  // namespace vorlanepic::testing
