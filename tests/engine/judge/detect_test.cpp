#include "engine/judge/detect.h"

#include <algorithm>
#include <cmath>
#include <string>

#include <gtest/gtest.h>

#include "engine/judge/page_axes.h"
#include "support/failing_heap.h"
#include "support/page_drawing.h"

namespace vorlane::judge {
namespace {

using vorlanepic::testing::DrawnPage;
using vorlanepic::testing::DrawPage;
using vorlanepic::testing::FillRectangle;
using vorlanepic::testing::TestImage;

PictureView ViewOf(const TestImage& image) {
  const ImageRec& rec = *image.rec();
  return {rec.rows[0], rec.lineBytes, rec.width, rec.height, rec.bitsPerPixel};
}

Status Detect(const PictureView& picture, const DetectOptions& options, Finding* finding) {
  evidence::PageLevels levels;
  return Detect(picture, options, levels, finding);
}

Finding Find(const TestImage& image, const DetectOptions& options = {}) {
  Finding finding;
  EXPECT_EQ(Detect(ViewOf(image), options, &finding), Status::kOk);
  return finding;
}

DrawnPage PlainPage() {
  DrawnPage page;
  page.imageWidth = 800;
  page.imageHeight = 1000;
  page.pageWidth = 560;
  page.pageHeight = 720;
  page.centerX = 400;
  page.centerY = 500;
  page.noise = 3;
  page.text = true;
  return page;
}

bool Says(const Finding& finding, Reason reason) {
  return std::ranges::any_of(
      finding.reasons, [reason](const ReasonReport& report) { return report.reason == reason; });
}

struct DetectCase {
  std::string name;
  DrawnPage page;
  Confidence least;
  double within = 0.15;  // degrees
};

DrawnPage Turned(double degrees) {
  DrawnPage page = PlainPage();
  page.degrees = degrees;
  return page;
}
DrawnPage Bits() {
  DrawnPage page = Turned(1.7);
  page.bitsPerPixel = 1;
  page.noise = 0;
  return page;
}
DrawnPage Colour() {
  DrawnPage page = Turned(-6.2);
  page.bitsPerPixel = 24;
  return page;
}
DrawnPage OffTheFrame() {
  DrawnPage page = Turned(3.3);
  page.centerX = 250;
  page.centerY = 350;
  return page;
}
DrawnPage Blank() {
  DrawnPage page = Turned(4.4);
  page.text = false;
  return page;
}
DrawnPage Torn() {
  DrawnPage page = Turned(-2.6);
  page.edges = vorlanepic::testing::EdgeShape::kTorn;
  page.edgeDepth = 14;
  return page;
}
DrawnPage FillsTheFrame() {
  DrawnPage page = Turned(2.2);
  page.pageWidth = 1400;
  page.pageHeight = 1600;
  return page;
}

class DetectTest : public testing::TestWithParam<DetectCase> {};

TEST_P(DetectTest, SetsThePageUpright) {
  const Finding found = Find(DrawPage(GetParam().page));
  EXPECT_GE(found.angleConfidence, GetParam().least);
  EXPECT_NEAR(found.turnDegrees, -GetParam().page.degrees, GetParam().within);
  EXPECT_NE(found.by, 0U);
}

INSTANTIATE_TEST_SUITE_P(
    Pages, DetectTest,
    testing::Values(DetectCase{"Slightly", Turned(0.4), Confidence::kSure},
                    DetectCase{"Left", Turned(-8.1), Confidence::kSure},
                    DetectCase{"Steep", Turned(33.0), Confidence::kSure},
                    DetectCase{"Bits", Bits(), Confidence::kSure},
                    DetectCase{"Colour", Colour(), Confidence::kSure},
                    DetectCase{"OffTheFrame", OffTheFrame(), Confidence::kSure},
                    DetectCase{"Blank", Blank(), Confidence::kSure},
                    DetectCase{"Torn", Torn(), Confidence::kLikely, 0.3},
                    DetectCase{"FillsTheFrame", FillsTheFrame(), Confidence::kLikely}),
    [](const auto& testCase) { return testCase.param.name; });

TEST(Detect, CutsJustOutsideTheSheet) {
  const DrawnPage page = Turned(5.0);
  const Finding found = Find(DrawPage(page));
  EXPECT_EQ(found.cutConfidence, Confidence::kSure);
  // The sheet's own corners, in the picture; the cut lies 1 to 4 pixels outside each side.
  const PageAxes axes = PageAxes::Of(5.0, page.imageWidth, page.imageHeight);
  const Point middle = axes.ToPage({page.centerX, page.centerY});
  EXPECT_NEAR(found.cut.left, middle.x - page.pageWidth / 2 - 2.5, 1.5);
  EXPECT_NEAR(found.cut.top, middle.y - page.pageHeight / 2 - 2.5, 1.5);
  EXPECT_NEAR(found.cut.right, middle.x + page.pageWidth / 2 + 2.5, 1.5);
  EXPECT_NEAR(found.cut.bottom, middle.y + page.pageHeight / 2 + 2.5, 1.5);
}

TEST(Detect, DoesNotTakeAMountForTheSheet) {
  TestImage scan = DrawPage(Turned(-3.0));
  DrawnPage mount = Turned(1.5);
  mount.pageWidth = 660;
  mount.pageHeight = 820;
  mount.paper = 120;
  mount.text = false;
  const TestImage board = DrawPage(mount);
  for (int32_t y = 0; y < 1000; ++y) {
    for (int32_t x = 0; x < 800; ++x) {
      if (scan.Get(x, y) < 30 && board.Get(x, y) > 100) scan.Set(x, y, board.Get(x, y));
    }
  }
  const Finding found = Find(scan);
  if (found.angleConfidence >= Confidence::kLikely) {
    EXPECT_NEAR(found.turnDegrees, 3.0, 0.2);
  }
  EXPECT_GE(found.angleConfidence, Confidence::kDoubtful);
}

TEST(Detect, KeepsAPictureWholeWhoseSidesAreNotSeen) {
  const Finding found = Find(DrawPage(FillsTheFrame()));
  EXPECT_LE(found.cutConfidence, Confidence::kDoubtful);
  EXPECT_TRUE(Says(found, Reason::kKeptWhole));
  EXPECT_GE(found.cut.right - found.cut.left, 800.0);
}

TEST(Detect, EndsASideHiddenByAnotherSheetAtTheGap) {
  TestImage scan = DrawPage(Turned(0.0));
  FillRectangle(&scan, 700, 0, 799, 999, 225);
  const Finding found = Find(scan);
  EXPECT_NEAR(found.cut.right, 680.0 - 399.5, 6.0);
}

// A sheet on a light lid that hides its upper part, and the dark rim of the glass above: the rim's
// edge is no print of the sheet's.
TEST(Detect, DoesNotReadTheRimOfTheGlass) {
  DrawnPage page = Turned(2.3);
  page.background = 190;
  page.text = false;
  TestImage scan = DrawPage(page);
  for (int32_t x = 0; x < 800; ++x) {
    const int32_t hidden = 260 + x * 37 % 90;
    for (int32_t y = 0; y < hidden; ++y) scan.Set(x, y, static_cast<uint8_t>(187 + (x + y) % 7));
  }
  FillRectangle(&scan, 0, 0, 799, 22, 8);
  FillRectangle(&scan, 0, 985, 799, 999, 8);
  FillRectangle(&scan, 0, 0, 9, 999, 8);
  FillRectangle(&scan, 785, 0, 799, 999, 8);
  const Finding found = Find(scan);
  EXPECT_NEAR(found.turnDegrees, -2.3, 0.2);
  EXPECT_GE(found.angleConfidence, Confidence::kLikely);
}

TEST(Detect, RefusesByNameWhatHoldsNoPage) {
  TestImage flat(300, 400, 8);
  flat.Fill(130);
  EXPECT_EQ(Find(flat).angleConfidence, Confidence::kRefused);
  EXPECT_TRUE(Says(Find(flat), Reason::kNoContrast));
  const TestImage noise = vorlanepic::testing::DrawNoise(300, 400, 8, 3);
  EXPECT_LE(Find(noise).angleConfidence, Confidence::kDoubtful);
  EXPECT_TRUE(Says(Find(TestImage(20, 300, 8)), Reason::kTooSmall));
}

TEST(Detect, TurnsWhatTheCallerChose) {
  // Upright rules on a sheet that lies turned by 1.2: print and paper differ.
  DrawnPage page = Turned(1.2);
  page.text = false;
  TestImage scan = DrawPage(page);
  for (int32_t y = 220; y < 780; y += 24) {
    for (int32_t x = 190; x < 600; x += 30) FillRectangle(&scan, x, y, x + 21, y + 7, 30);
  }
  const auto turnBy = [&scan](By by) {
    DetectOptions options;
    options.by = by;
    return Find(scan, options).turnDegrees;
  };
  EXPECT_NEAR(turnBy(By::kAuto), -1.2, 0.1);
  EXPECT_NEAR(turnBy(By::kPaper), -1.2, 0.1);
  EXPECT_NEAR(turnBy(By::kPrint), 0.0, 0.1);
  EXPECT_TRUE(Says(Find(scan), Reason::kPrintOffPaper));
}

TEST(Detect, FollowsTheBarOfAForm) {
  vorlanepic::testing::DrawnBarSheet sheet;
  sheet.page = Turned(3.0);
  sheet.page.text = false;
  sheet.barLength = 400;
  sheet.barThickness = 12;
  sheet.barY = -250;
  DetectOptions options;
  options.by = By::kBar;
  for (const bool isTall : {false, true}) {
    sheet.tall = isTall;
    sheet.barX = isTall ? -200 : 0;
    sheet.barY = isTall ? 0 : -250;
    const Finding found = Find(vorlanepic::testing::DrawBarSheet(sheet), options);
    EXPECT_NEAR(found.turnDegrees, -3.0, 0.2) << isTall;
    EXPECT_GE(found.angleConfidence, Confidence::kLikely);
  }
  EXPECT_EQ(Find(DrawPage(Blank()), options).angleConfidence, Confidence::kRefused);
}

TEST(Detect, KeepsToItsLimits) {
  const TestImage scan = DrawPage(Turned(9.0));
  DetectOptions options;
  options.maxAngleDegrees = 5.0;
  EXPECT_EQ(Find(scan, options).angleConfidence, Confidence::kDoubtful);
  options.minConfidence = Confidence::kLikely;
  const Finding refused = Find(scan, options);
  EXPECT_EQ(refused.angleConfidence, Confidence::kRefused);
  EXPECT_EQ(refused.turnDegrees, 0.0);
  EXPECT_TRUE(Says(refused, Reason::kTooSteep) && Says(refused, Reason::kBelowConfidence));
  const Finding straight = Find(DrawPage(Turned(0.0)));
  EXPECT_EQ(straight.turnDegrees, 0.0);
  EXPECT_TRUE(Says(straight, Reason::kNotTurned));
}

TEST(Detect, NarrowsTheCutToWhatIsPrinted) {
  TestImage scan = DrawPage(Blank());
  FillRectangle(&scan, 300, 400, 500, 420, 20);
  FillRectangle(&scan, 300, 580, 500, 600, 20);
  DetectOptions options;
  options.crop = Crop::kContent;
  const Finding found = Find(scan, options);
  EXPECT_NEAR(found.cut.right - found.cut.left, 200 + 200 * 0.077 + 20, 25.0);
  EXPECT_NEAR(found.cut.bottom - found.cut.top, 200 + 200 * 0.077 + 20, 25.0);
}

TEST(Detect, RefusesArgumentsThatCannotBe) {
  const TestImage scan(40, 40, 8);
  Finding finding;
  const auto statusOf = [&finding](PictureView view) { return Detect(view, {}, &finding); };
  PictureView view = ViewOf(scan);
  EXPECT_EQ(Detect(view, {}, nullptr), Status::kBadArgument);
  view.depth = 4;
  EXPECT_EQ(statusOf(view), Status::kBadArgument);
  view = ViewOf(scan);
  view.strideBytes = 39;
  EXPECT_EQ(statusOf(view), Status::kBadArgument);
  view = ViewOf(scan);
  view.width = kLargestSide + 1;
  view.strideBytes = kLargestSide + 1;
  EXPECT_EQ(statusOf(view), Status::kTooLarge);
  DetectOptions options;
  options.maxAngleDegrees = NAN;
  EXPECT_EQ(Detect(ViewOf(scan), options, &finding), Status::kBadArgument);
}

TEST(Detect, SaysThatMemoryFailed) {
  DrawnPage page = Turned(3.0);
  page.bitsPerPixel = 24;
  TestImage scan = DrawPage(page);
  FillRectangle(&scan, 740, 0, 799, 999, 225);  // a side is looked for from inside
  Status status = Status::kOk;
  Finding finding;
  vorlanepic::testing::ForEachHeapFailure([&] { status = Detect(ViewOf(scan), {}, &finding); },
                                          [&](int32_t n) {
                                            EXPECT_EQ(status, Status::kOutOfMemory) << n;
                                            EXPECT_EQ(finding.reasonCount, 0U);
                                          });
  EXPECT_EQ(status, Status::kOk);
}

}  // namespace
}  // namespace vorlane::judge
