#include "analysis/segment_selection.h"

#include "analysis/border_drawing.h"

namespace vorlanepic::testing {

using namespace analysis;
namespace {

constexpr EdgeSource kWhole = EdgeSource::kWholeSides;
constexpr EdgeSource kBeyond = EdgeSource::kBeyondExtremes;

using Points = std::vector<frame::PixelPoint>;
using SegmentSelectionTest = AnalysisTest;

// The chord of (0, 0) and (20, 10) has y = 5 at x = 10, the one of (0, 10) and (20, 0) as well.
TEST_F(SegmentSelectionTest, JudgeKeepsWhatIsInLineWithItsNeighbours) {
  struct Case {
    const char* name;
    frame::PixelPoint previous;
    frame::PixelPoint next;
    frame::PixelPoint tested;
    EdgeSource source;
    const char* verdicts;  // for edges 1..4; as before where the verdict is left alone
  };
  const Case cases[] = {
      {"six across", {0, 100}, {0, 106}, {6, 106}, kWhole, "1111"},
      {"seven below", {0, 100}, {0, 106}, {6, 107}, kWhole, "0101"},
      {"seven aside", {0, 100}, {7, 100}, {7, 100}, kWhole, "1010"},
      {"below a rising chord", {0, 0}, {20, 10}, {10, 6}, kBeyond, "1100"},
      {"above a falling chord", {0, 10}, {20, 0}, {10, 4}, kBeyond, "1100"},
      {"the chord's 5.5 is cut to 5", {0, 0}, {20, 10}, {11, 5}, kBeyond, "1111"},
      {"level chord", {0, 5}, {20, 5}, {10, 90}, kBeyond, "----"},
  };
  for (const Case& c : cases) {
    for (int32_t code = 1; code <= 4; ++code) {
      for (const bool before : {false, true}) {
        bool verdict = before;
        EXPECT_EQ(JudgeSegment(settings_, c.previous, c.next, c.tested, c.source,
                               static_cast<EdgeCode>(code), &verdict),
                  0);
        const char expected = c.verdicts[code - 1];
        EXPECT_EQ(verdict, expected == '-' ? before : expected == '1')
            << c.name << ", code " << code;
      }
    }
  }
}

Points With(Points line, size_t index, frame::PixelPoint point) {
  line[index] = point;
  return line;
}

Points Without(Points line, ptrdiff_t index) {
  line.erase(line.begin() + index);
  return line;
}

// y = 104 but for a notch of 6 rows a segment up to `depth` rows, twice over, so that the halves
// have the same mean.
Points NotchedEdge(int32_t half, int32_t depth) {
  Points means = Line(2 * half, 0, 104, 12, 0);
  for (const int32_t center : {half / 2, half + half / 2}) {
    for (int32_t k = -depth / 6; k <= depth / 6; ++k) {
      const int32_t index = center + k;
      means[static_cast<size_t>(index)].y -= depth - 6 * std::abs(k);
    }
  }
  return means;
}

const Points kRising = Line(12, 10, 20, 12, 6);

TEST_F(SegmentSelectionTest, SelectKeepsTheSegmentsOfOneLine) {
  struct Case {
    const char* name;
    Points means;
    EdgeSource source;
    int32_t status;
    Points kept;
  };
  const Points three = {{0, 0}, {12, 90}, {24, 3}};
  const Points level = Line(8, 10, 20, 12, 0);
  const Points notStraight = Line(20, 0, 100, 12, 0);
  const Points steep = Line(10, 5, 0, 0, 12);
  const Points nearOutlier = With(kRising, 5, {70, 47});
  const Case cases[] = {
      {"up to three are not judged", three, kBeyond, 0, three},
      {"no segment", {}, kBeyond, BAD_ARGUMENT, {}},
      {"straight", kRising, kBeyond, 0, kRising},
      // No level chord judges its segments: only the ends make the line, and all lie on it.
      {"level", level, kBeyond, 0, level},
      // A corner of other paper far inside the page: judged away, and too far from the line.
      {"outlier goes", With(kRising, 5, {70, 30}), kBeyond, 0, Without(kRising, 5)},
      // 3 rows above the chord it is judged away, but lies near enough to the line.
      {"near outlier comes back", nearOutlier, kBeyond, 0, nearOutlier},
      // Not straight: its neighbours are dropped with it, and come back.
      {"jump goes", With(notStraight, 4, {48, 110}), kWhole, 0, Without(notStraight, 4)},
      // Steps of 12 rows are more than the gap of 6 that a side along x may have, but the two
      // ends make a line on which all others lie.
      {"steep side along x", steep, kWhole, 0, steep},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    SideTrace side;
    FillTrace(&side, c.means);
    EXPECT_EQ(SelectSegments(settings_, c.source, EdgeCode::kE1, &side.list), c.status);
    if (c.status != STATUS_OK) continue;
    EXPECT_EQ(MeansOf(side.list), c.kept);
    for (const BorderSegment& segment : side.list.view()) EXPECT_TRUE(segment.used);
  }
}

// With 150 segments a half and 600 rows of notch the chord is y = 100; distances from it are
// 131 * 4 + 2 * (2 + 8 + ... + 50) + 56 = 1048, on the mean 6. The line through the points drops
// all of the notch but its rims at y = 98. With 216 segments and 864 rows 193 segments lie 4 below
// the chord, the notch 2, 8, ... 62 twice and 68 above: 1544 / 216 is above 7. At the bottom and on
// the right the notch reaches into the page and goes before the mean is looked at.
TEST_F(SegmentSelectionTest, ANotchIsCutOffUnlessTheEdgeIsScattered) {
  struct Case {
    int32_t half;
    int32_t depth;
    int32_t code;
    int32_t kept;  // of a half; 0: no edge
  };
  for (const Case& c : {Case{150, 60, 1, 133}, Case{216, 72, 1, 0}, Case{216, 72, 2, 0},
                        Case{216, 72, 3, 195}, Case{216, 72, 4, 195}}) {
    const Points means = NotchedEdge(c.half, c.depth);
    SideTrace side;
    FillTrace(&side, c.code % 2 == 1 ? means : Transposed(means));
    EXPECT_EQ(SelectSegments(settings_, kWhole, static_cast<EdgeCode>(c.code), &side.list),
              c.kept == 0 ? EDGE_NOT_FOUND : STATUS_OK);
    if (c.kept == 0) continue;
    EXPECT_EQ(side.list.segmentCount, 2 * c.kept) << "code " << c.code;
  }
}

TEST_F(SegmentSelectionTest, RefusesWhatItCannotJudge) {
  bool verdict = true;
  EXPECT_EQ(JudgeSegment(settings_, {3, 3}, {3, 3}, {2, 2}, kBeyond, EdgeCode::kE1, &verdict),
            BAD_ARGUMENT);
  EXPECT_TRUE(verdict);
}

}  // namespace
}  // namespace vorlanepic::testing
