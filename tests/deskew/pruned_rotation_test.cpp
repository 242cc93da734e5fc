#include "deskew/pruned_rotation.h"

#include <cmath>
#include <span>
#include <string>

#include "deskew/deskew_fixture.h"
#include "deskew/deskew_settings.h"
#include "deskew/page_records.h"
#include "frame/scratch.h"
#include "support/failing_heap.h"

namespace vorlanepic::testing {

using namespace deskew;
namespace {

constexpr uint8_t kFill[3] = {1, 2, 3};

class PrunedRotationTest : public DeskewTest {
 protected:
  PrunedRotationTest() { AssignPrunedRotationSettings(kParam, {}, 1, &settings_); }

  int32_t Run(const TestImage& page) {
    result_.Release();
    records_ = {};
    return RunPrunedRotation(settings_, std::span(page.rec(), 1), options_, &angle_,
                             std::span(result_.rec(), 1), &records_);
  }

  int32_t RunChecked(const ImageRec* sources, ImageRec* results, size_t count) {
    records_ = {};
    return RunCheckedPrunedRotation(settings_, sources, options_, &angle_, results, count,
                                    &records_);
  }

  void ExpectPage(const DrawnPage& page, double degrees, double pixels) {
    EXPECT_NEAR(std::remainder(angle_ * 57.29577951308232 + page.degrees, 360), 0, degrees);
    EXPECT_NEAR(result_.rec()->width, page.pageWidth, pixels);
    EXPECT_NEAR(result_.rec()->height, page.pageHeight, pixels);
  }

  PrunedRotationOptions options_{INTERP_NEAREST, 0, 0, 0, kFill};
  const TestImage page_ = DrawPage({});
  frame::ScratchImage result_;
  PageRecords records_;
};

TEST_F(PrunedRotationTest, FindsDrawnPagesAtEveryDepthAndAngle) {
  DrawnPage page{.imageWidth = 760, .imageHeight = 800, .pageWidth = 380, .pageHeight = 500};
  page.centerX = 370;
  page.centerY = 410;
  page.text = true;
  for (const int32_t depth : {1, 8, 24}) {
    for (const double degrees : {-43.0, -30.0, -12.0, -5.0, -1.5, 0.0, 0.7, 3.0, 8.0, 20.0, 43.0}) {
      page.bitsPerPixel = depth;
      page.degrees = degrees;
      SCOPED_TRACE(std::to_string(depth) + " bits, " + std::to_string(degrees) + " degrees");
      ASSERT_EQ(Run(DrawPage(page)), STATUS_OK);
      // At 1 bit a border point lies up to four pixels behind the edge.
      ExpectPage(page, 0.35, depth == 1 ? 8 : 4);
      EXPECT_EQ(result_.rec()->bitsPerPixel, depth);
      EXPECT_NEAR(records_.geometry.center.x, 370, 3);
      EXPECT_NEAR(records_.geometry.center.y, 410, 3);
      EXPECT_EQ(records_.stage, PageStage::kTurned);
    }
  }
}

TEST_F(PrunedRotationTest, FindsPagesWithPoorEdges) {
  DrawnPage page{.degrees = 2, .noise = 12, .edgeDepth = 3};
  for (const EdgeShape edges : {EdgeShape::kStraight, EdgeShape::kTorn, EdgeShape::kCurved}) {
    page.edges = edges;
    ASSERT_EQ(Run(DrawPage(page)), STATUS_OK);
    ExpectPage(page, 0.6, 8);
  }
}

TEST_F(PrunedRotationTest, LevelsFollowFromThresholdAndBackground) {
  struct Case {
    int32_t threshold;
    int32_t background;
    uint8_t margin;  // grey level of the image's frame
    int32_t inEffect;
    uint8_t low;
    uint8_t high;
  };
  const Case cases[] = {
      {0, 0, 30, 80, 80, 255},      {0, 0, 81, 81, 81, 255},   // an estimate is raised to 80
      {30, 0, 200, 30, 30, 255},                               // a given threshold is not
      {300, 0, 0, 300, 44, 255},    {-1, 0, 0, -1, 255, 255},  // its low byte counts
      {250, 255, 0, 250, 241, 255}, {5, 255, 0, 5, 0, 14},     // the band ends at 0 and 255
      {100, 255, 0, 100, 91, 109},
  };
  for (const Case& c : cases) {
    TestImage page(200, 200, 8);
    page.Fill(c.margin);
    options_.threshold = c.threshold;
    options_.background = c.background;
    Run(page);
    EXPECT_EQ(records_.threshold, c.inEffect);
    EXPECT_EQ(records_.levels.low, c.low) << c.threshold;
    EXPECT_EQ(records_.levels.high, c.high) << c.threshold;
  }
}

TEST_F(PrunedRotationTest, LeavesHowFarARunCame) {
  TestImage stripes(200, 200, 8);
  for (int32_t i = 0; i < stripes.rec()->imageBytes; i += 2) stripes.rec()->pixels[i] = 255;
  const auto expect = [&](const TestImage& image, int32_t status, PageStage stage) {
    EXPECT_EQ(Run(image), status);
    EXPECT_EQ(records_.stage, stage);
    EXPECT_EQ(result_.rec()->pixels, nullptr);
  };
  expect(TestImage(1, 200, 8), BAD_ARGUMENT, PageStage::kNothing);
  expect(TestImage(200, 200, 8), BORDER_NOT_FOUND, PageStage::kThreshold);
  options_.threshold = 100;
  expect(stripes, BORDER_NOT_FOUND, PageStage::kBand);  // no two light pixels are neighbours
  EXPECT_EQ(angle_, -1);
  records_ = {};
  EXPECT_EQ(
      RunPrunedRotation(settings_, std::span(page_.rec(), 1), options_, nullptr, {}, &records_),
      BAD_ARGUMENT);
  EXPECT_EQ(records_.stage, PageStage::kEdges);
  options_.fill = nullptr;
  expect(page_, BAD_ARGUMENT, PageStage::kCorners);
  settings_.AngleOnlyFlag = 1;
  expect(page_, STATUS_OK, PageStage::kCorners);
  EXPECT_NEAR(angle_, 0, 0.006);
}

TEST_F(PrunedRotationTest, TurnsAllImagesLikeTheFirst) {
  const TestImage page = DrawPage({.degrees = 4});
  TestImage dark = page;
  const auto halve = [](const ImageRec& image) {
    for (int32_t i = 0; i < image.imageBytes; ++i) {
      if (image.pixels[i] != kFill[0]) image.pixels[i] /= 2;
    }
  };
  halve(*dark.rec());
  const ImageRec sources[] = {*page.rec(), *dark.rec()};
  ImageRec results[2] = {};
  ASSERT_EQ(RunChecked(sources, results, 2), STATUS_OK);
  ASSERT_EQ(Run(page), STATUS_OK);
  EXPECT_TRUE(SamePixels(results[0], *result_.rec()));
  halve(results[0]);
  EXPECT_TRUE(SamePixels(results[0], results[1]));
  for (ImageRec& image : results) Imgbuf_Destory(&image);
}

TEST_F(PrunedRotationTest, LeavesNoResultWhenOneImageFails) {
  const ImageRec sources[] = {*page_.rec(), *page_.rec(), *page_.rec()};
  ImageRec results[3] = {};
  imgbuf_.FailNew(2, 77);
  EXPECT_EQ(RunChecked(sources, results, 3), 77);
  EXPECT_EQ(imgbuf_.aliveImages(), 0);
  for (const ImageRec& image : results) {
    EXPECT_EQ(image.pixels, nullptr);
    EXPECT_EQ(image.width, 0);
  }
}

TEST_F(PrunedRotationTest, CheckedEntryRefusesArraysThatDoNotSuitAndTakesNoBackground) {
  const TestImage wider(401, 500, 8);
  const TestImage higher(400, 501, 8);
  const TestImage deeper(400, 500, 24);
  ImageRec results[2] = {};
  EXPECT_EQ(RunChecked(nullptr, results, 1), BAD_ARGUMENT);
  EXPECT_EQ(RunChecked(page_.rec(), nullptr, 1), BAD_ARGUMENT);
  for (const ImageRec& second : {*wider.rec(), *higher.rec(), *deeper.rec(), ImageRec{}}) {
    const ImageRec sources[] = {*page_.rec(), second};
    EXPECT_EQ(RunChecked(sources, results, 2), BAD_ARGUMENT);
  }
  // A code of the image library comes back, whichever image it is about.
  const ImageRec alike[] = {*page_.rec(), *page_.rec()};
  for (const int32_t check : {0, 1}) {
    imgbuf_.FailCheck(check, 77);
    EXPECT_EQ(RunChecked(alike, results, 2), 77);
  }
  // It takes no background; nothing on the page lies in 91..109.
  options_.threshold = 100;
  options_.background = 255;
  EXPECT_EQ(Run(page_), BORDER_NOT_FOUND);
  EXPECT_EQ(RunChecked(page_.rec(), result_.rec(), 1), STATUS_OK);
}

// Every stage checks the image again; the code of whichever refuses comes back.
TEST_F(PrunedRotationTest, PassesCodesOfTheImageLibraryOn) {
  int32_t checks = 0;
  imgbuf_.FailCheck(checks, 77);
  while (Run(page_) == 77) imgbuf_.FailCheck(++checks, 77);
  EXPECT_EQ(checks, 7);  // threshold, band, rows, columns, edges, corners, rotation
  EXPECT_NE(result_.rec()->pixels, nullptr);
  result_.Release();
  imgbuf_.FailCheck(-1, 0);
  imgbuf_.FailNew(0, 78);
  EXPECT_EQ(Run(page_), 78);
  EXPECT_EQ(imgbuf_.aliveImages(), 0);
}

TEST_F(PrunedRotationTest, ReleasesEverythingWhenMemoryRunsOut) {
  int32_t status = STATUS_OK;
  const auto check = [&](int32_t request) {
    if (status == STATUS_OK) return;  // a thread that can't be had is done without
    EXPECT_EQ(status, OUT_OF_MEMORY) << "request " << request;
    EXPECT_EQ(result_.rec()->pixels, nullptr);
    EXPECT_EQ(imgbuf_.aliveImages(), 0);
  };
  ForEachHeapFailure([&] { status = Run(page_); }, check);
  EXPECT_EQ(status, STATUS_OK);
}

}  // namespace
}  // namespace vorlanepic::testing
