#include "analysis/border_scan.h"

#include "analysis/border_drawing.h"

namespace vorlanepic::testing {

using namespace analysis;
namespace {

using FindBandTest = AnalysisTest;

// From above rows 0, 8, 16 ... are sampled, from below height - 1, height - 9, ...
TEST_F(FindBandTest, ReachesNineRowsBeyondTheSampledRowsOfThePage) {
  // Light pixels from column 0 on in rows first..last of an image 200 wide.
  struct Case {
    const char* name;
    int32_t bitsPerPixel;
    int32_t height;
    int32_t first;
    int32_t last;
    int32_t light;
    int32_t method;
    int32_t top = -1;  // of the band; -1: there is none
    int32_t bottom = 0;
  };
  const Case cases[] = {
      {"near the frame", 8, 100, 3, 97, 120, 1, 0, 99},
      {"just long enough", 24, 100, 20, 70, 86, 1, 15, 76},
      {"one pixel short", 24, 100, 20, 70, 85, 1},
      {"one pixel for other methods", 8, 100, 20, 70, 1, 3},
      {"bits", 1, 100, 20, 70, 86, 1, 15, 76},
      {"between sampled rows", 8, 100, 17, 23, 120, 1},
      {"missed from below", 8, 12, 0, 2, 120, 1},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    TestImage image(200, c.height, c.bitsPerPixel);
    FillRectangle(&image, 0, c.first, c.light - 1, c.last, 201);
    settings_.BorderMethod = c.method;
    frame::PixelRect band{};
    EXPECT_EQ(FindBand(settings_, *image.rec(), 200, &band),
              c.top < 0 ? BORDER_NOT_FOUND : STATUS_OK);
    if (c.top < 0) continue;
    EXPECT_EQ(band.left, 0);
    EXPECT_EQ(band.right, 199);
    EXPECT_EQ(band.top, c.top);
    EXPECT_EQ(band.bottom, c.bottom);
  }
}

TEST_F(FindBandTest, CountsOnlyWhatIsLighterThanTheThresholdAndNoPadding) {
  TestImage image(100, 10, 8);
  frame::PixelRect band{};
  image.Fill(200);
  EXPECT_EQ(FindBand(settings_, *image.rec(), 200, &band), BORDER_NOT_FOUND);
  image.Fill(255);
  EXPECT_EQ(FindBand(settings_, *image.rec(), 254, &band), STATUS_OK);
  EXPECT_EQ(FindBand(settings_, *image.rec(), 255, &band), BORDER_NOT_FOUND);
  settings_.BorderMethod = 3;
  TestImage bits(9, 1, 1);
  bits.row(0)[1] = 0xFF;  // pixel 8 and padding
  EXPECT_EQ(FindBand(settings_, *bits.rec(), 0, &band), BORDER_NOT_FOUND);
}

TEST_F(FindBandTest, RefusesWhatItCannotRead) {
  frame::PixelRect band{};
  TestImage image(9, 9, 4);
  EXPECT_EQ(FindBand(settings_, *image.rec(), 0, &band), BAD_ARGUMENT);
}

constexpr GreyBand kLevels{200, 255};

class BorderScanTest : public AnalysisTest {
 protected:
  int32_t Rows(const TestImage& image) {
    return ScanRows(settings_, *image.rec(), band_, kLevels, &traces_.left, &traces_.right,
                    &extremes_);
  }
  int32_t Columns(const TestImage& image) {
    return ScanColumns(settings_, *image.rec(), band_, kLevels, &traces_.top, &traces_.bottom,
                       &extremes_);
  }

  frame::PixelRect band_{0, 299, 15, 84};
  BorderTraces traces_;
  ExtremePoints extremes_{};
};

// The page is columns 100..199 and rows 20..79. Rows 21, 23, ... 79 make 30 points, 5 segments.
// Columns are scanned from the rightmost to the leftmost point: 49, of which 8 segments are full.
// At 1 bit points lie behind the run: 12 zero bytes are 6 rounds, (96, 97) and (98, 99) miss, (100,
// 101) hits. From column 299, the fourth of its byte, 13 zero bytes lead down to 203; the seventh
// round is (203, 195), (194, 193) hits.
TEST_F(BorderScanTest, TracesTheSidesOfARectangle) {
  for (const int32_t bitsPerPixel : {1, 8, 24}) {
    TestImage image(300, 100, bitsPerPixel);
    FillRectangle(&image, 100, 20, 199, 79, 230);
    const int32_t left = bitsPerPixel == 1 ? 102 : 101;
    const int32_t right = bitsPerPixel == 1 ? 192 : 198;
    ASSERT_EQ(Rows(image), STATUS_OK);
    EXPECT_EQ(traces_.left.pointCount, 30);
    EXPECT_EQ(traces_.left.list.segmentCount, 5);
    EXPECT_EQ(traces_.left.list.segments[0].meanY, 26);
    EXPECT_EQ(extremes_.leftmost, (frame::PixelPoint{left, 21}));
    EXPECT_EQ(extremes_.rightmost, (frame::PixelPoint{right, 79}));
    ASSERT_EQ(Columns(image), STATUS_OK);
    EXPECT_EQ(extremes_.topmost, (frame::PixelPoint{right, 20}));
    // From row 84 in steps of two: the run is rows 78 and 77.
    EXPECT_EQ(extremes_.bottommost, (frame::PixelPoint{right, 78}));
  }
  EXPECT_EQ(traces_.top.pointCount, 48);
  EXPECT_EQ(extremes_.topSegments.first, 0);
  EXPECT_EQ(extremes_.topSegments.last, 7);
}

// 60 border rows are 10 segments a side; both sides stand out in rows of segments 3 and 7.
TEST_F(BorderScanTest, EqualExtremesNameTheirSegments) {
  TestImage image(300, 130, 8);
  FillRectangle(&image, 100, 0, 199, 119, 230);
  for (const int32_t row : {2 * (6 * 3 + 2), 2 * (6 * 7 + 2)}) {
    FillRectangle(&image, 97, row, 202, row, 230);
  }
  band_ = {0, 299, 0, 129};
  ASSERT_EQ(Rows(image), STATUS_OK);
  EXPECT_EQ(extremes_.leftmost, (frame::PixelPoint{98, 40}));
  EXPECT_EQ(extremes_.leftSegments.first, 3);
  EXPECT_EQ(extremes_.leftSegments.last, 7);
  EXPECT_EQ(extremes_.rightmost, (frame::PixelPoint{201, 88}));
}

TEST_F(BorderScanTest, FindsNothingOnABlankImageOrInShortSegments) {
  for (const int32_t bitsPerPixel : {1, 8, 24}) {
    TestImage image(300, 100, bitsPerPixel);
    EXPECT_EQ(Rows(image), BORDER_NOT_FOUND);
    extremes_ = {.leftmost = {10, 50}, .rightmost = {90, 50}};
    EXPECT_EQ(Columns(image), BORDER_NOT_FOUND);
    // 5 border rows: one stored segment that is not full, so there is no extreme point.
    FillRectangle(&image, 100, 20, 199, 30, 230);
    EXPECT_EQ(Rows(image), BORDER_NOT_FOUND);
    EXPECT_EQ(traces_.left.pointCount, 0);
    EXPECT_EQ(traces_.left.list.segmentCount, 0);
  }
}

TEST_F(BorderScanTest, RefusesWhatItCannotRead) {
  EXPECT_EQ(Rows(TestImage(300, 100, 4)), BAD_ARGUMENT);
  EXPECT_EQ(Columns(TestImage(300, 100, 4)), BAD_ARGUMENT);
  TestImage grey(300, 100, 8);
  // From the right the walk comes to (14: 8 columns, 6), (5, 4), (3, 2), (1, 0) and ends left of
  // the image.
  TestImage narrow(15, 40, 1);
  FillRectangle(&narrow, 0, 0, 1, 39, 255);
  band_ = {0, 14, 0, 39};
  EXPECT_EQ(Rows(narrow), BAD_ARGUMENT);
  extremes_ = {.leftmost = {10, 50}, .rightmost = {300, 50}};
  EXPECT_EQ(Columns(grey), BAD_ARGUMENT);
}

TEST_F(BorderScanTest, ReportsExhaustedMemoryAtEveryStep) {
  TestImage image(300, 100, 8);
  FillRectangle(&image, 100, 20, 199, 79, 230);
  ExpectOutOfMemoryAtEveryRequest([&] { return Rows(image); });
  ExpectOutOfMemoryAtEveryRequest([&] { return Columns(image); });
}

}  // namespace
}  // namespace vorlanepic::testing
