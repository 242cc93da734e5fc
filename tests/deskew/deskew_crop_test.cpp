#include "deskew/deskew_crop.h"

#include <cmath>
#include <functional>
#include <vector>

#include <gtest/gtest.h>

#include "deskew/page_records.h"
#include "frame/settings.h"
#include "support/failing_heap.h"
#include "support/failing_imgbuf.h"
#include "support/page_drawing.h"

namespace vorlanepic {
namespace {

using testing::DrawnPage;
using testing::DrawPage;
using testing::FailingImgbuf;
using testing::ForEachHeapFailure;
using testing::TestImage;

TEST(TurnOfBorder, MakesTheNearestOfLevelAndPlumb) {
  struct Case {
    double border;
    double turn;
  };
  for (const Case& c :
       {Case{-45, 315}, Case{45, 315}, Case{0, 0}, Case{90, 0}, Case{-2, 2}, Case{2, 358},
        Case{88, 2}, Case{-88, 358}, Case{-44.5, 44.5}, Case{45.5, 44.5}}) {
    EXPECT_EQ(TurnOfBorder(c.border), c.turn) << c.border;
  }
  EXPECT_TRUE(std::signbit(TurnOfBorder(0.0)));
  EXPECT_FALSE(std::signbit(TurnOfBorder(-0.0)));
}

constexpr uint8_t kFill[3] = {0, 0, 0};

// The settings of method 2 for a page without speckles.
void AssignSettings() {
  settings = {};
  settings.SegmentMaxGap = 1;
  settings.SegmentPointNum = 1;
  settings.SegmentMinPointNum = 1;
  settings.SearchBorderPixelNum = 2;
  settings.ToLineDistance = 8;
  settings.SegmentLen = 10;
  settings.SearchLimitNum = 3;
  settings.PixelNum = 5;
  settings.CropPixelNum = 50;
  settings.GroupAngle = 2.0;
  settings.ImageNum = 1;
}

class DeskewCropPipelineTest : public ::testing::Test {
 protected:
  void SetUp() override { AssignSettings(); }
  void TearDown() override {
    settings = {};
    Release();
  }

  // Runs on as many of `images` as ImageNum says.
  int32_t Run(const std::vector<const TestImage*>& images, int32_t threshold = 120) {
    Release();
    std::vector<ImageRec> records;
    for (const TestImage* image : images) records.push_back(*image->rec());
    outImages_.assign(images.size(), ImageRec{});
    return DeskewCropPipeline(records.data(), {INTERP_BILINEAR, threshold, kFill}, &angle_,
                              outImages_.data());
  }

  void Release() {
    for (ImageRec& image : outImages_) {
      if (image.pixels != nullptr) Imgbuf_Destory(&image);
    }
    outImages_.clear();
  }

  std::vector<ImageRec> outImages_;
  double angle_ = -1.0;
};

TEST_F(DeskewCropPipelineTest, StraightensAndCutsAPage) {
  for (const int32_t depth : {1, 8, 24}) {
    for (const double degrees : {-12.0, -3.0, 0.0, 1.5, 8.0}) {
      AssignSettings();
      const TestImage page = DrawPage({.bitsPerPixel = depth, .degrees = degrees});
      ASSERT_EQ(Run({&page}), STATUS_OK) << depth << " bits, " << degrees;
      // Turned back: 360 - degrees clockwise.
      const double turn = std::fmod(360.0 - degrees, 360.0);
      EXPECT_NEAR(std::remainder(angle_ - turn, 360.0), 0.0, 0.4);
      ASSERT_EQ(outImages_[0].bitsPerPixel, depth);
      EXPECT_NEAR(outImages_[0].width, 280, 4);
      EXPECT_NEAR(outImages_[0].height, 360, 4);
      EXPECT_EQ(settings.ImageNum, 1);
    }
  }
}

TEST_F(DeskewCropPipelineTest, EstimatesAThresholdOnlyWhenAskedTo) {
  PageRecords records;
  settings.pageRecords = &records;
  const TestImage page = DrawPage({.background = 20});
  ASSERT_EQ(Run({&page}, 0), STATUS_OK);
  EXPECT_EQ(records.threshold, 20);
  AssignSettings();
  settings.pageRecords = &records;
  ASSERT_EQ(Run({&page}, 40), STATUS_OK);
  EXPECT_EQ(records.threshold, 40);
  EXPECT_EQ(records.levels.low, 40);
  EXPECT_EQ(records.levels.high, 255);
  AssignSettings();
  settings.pageRecords = &records;
  ASSERT_EQ(Run({&page}, 256 + 100), STATUS_OK);
  EXPECT_EQ(records.levels.low, 100);
}

TEST_F(DeskewCropPipelineTest, StopsAfterTheAngleWhenToldTo) {
  const FailingImgbuf imgbuf;
  settings.AngleOnlyFlag = 1;
  settings.CropPixelFlag = 1;
  settings.ImageNum = 3;
  const TestImage page = DrawPage({.degrees = 5});
  ASSERT_EQ(Run({&page, &page, &page}), STATUS_OK);
  EXPECT_NEAR(angle_, 355.0, 0.2);
  EXPECT_EQ(imgbuf.newCalls(), 0);
  EXPECT_EQ(settings.ImageNum, 3);
  EXPECT_EQ(settings.CropPixelFlag, 0);
}

TEST_F(DeskewCropPipelineTest, TurnsASetWithTheFirstOnesGeometry) {
  const TestImage first = DrawPage({.degrees = 3});
  const TestImage darker = DrawPage({.degrees = -7, .background = 5, .paper = 90});
  const TestImage colour = DrawPage({.bitsPerPixel = 24, .degrees = 3});
  settings.ImageNum = 3;
  ASSERT_EQ(Run({&first, &darker, &colour}), STATUS_OK);
  for (const ImageRec& image : outImages_) {
    EXPECT_EQ(image.width, outImages_[0].width);
    EXPECT_EQ(image.height, outImages_[0].height);
  }
  EXPECT_EQ(outImages_[2].bitsPerPixel, 24);
  EXPECT_EQ(settings.ImageNum, 1);
}

TEST_F(DeskewCropPipelineTest, KeepsTheOutputsMadeBeforeAFailure) {
  const TestImage page = DrawPage({.degrees = 3});
  const TestImage small(50, 50, 8);
  settings.ImageNum = 2;
  EXPECT_EQ(Run({&page, &small}), BAD_ARGUMENT);
  EXPECT_NE(outImages_[0].pixels, nullptr);
  EXPECT_EQ(outImages_[1].pixels, nullptr);
}

// The flag is 0 for the search in the source and asked for again in the turned image.
TEST_F(DeskewCropPipelineTest, LeavesTheFlagAtZeroUntilTheFirstTurn) {
  const TestImage page = DrawPage({});
  settings.CropPixelFlag = 1;
  ASSERT_EQ(Run({&page}), STATUS_OK);
  EXPECT_EQ(settings.CropPixelFlag, 1);

  FailingImgbuf imgbuf;
  imgbuf.FailNew(0, 9);  // the turned image
  EXPECT_EQ(Run({&page}), 9);
  EXPECT_EQ(settings.CropPixelFlag, 0);

  settings.CropPixelFlag = 1;
  imgbuf.FailNew(1, 9);  // the cut image
  EXPECT_EQ(Run({&page}), 9);
  EXPECT_EQ(settings.CropPixelFlag, 1);

  // A vote without an angle comes before the search.
  settings.SegmentLen = 50;
  EXPECT_EQ(Run({&page}), ANGLE_NOT_FOUND);
  EXPECT_EQ(settings.CropPixelFlag, 1);
}

TEST_F(DeskewCropPipelineTest, ReportsTheStageThatFailed) {
  const TestImage dark(200, 200, 8);
  EXPECT_EQ(Run({&dark}), BORDER_NOT_FOUND);
  const TestImage page = DrawPage({});
  EXPECT_EQ(DeskewCropPipeline(nullptr, {2, 0, kFill}, &angle_, nullptr), BAD_ARGUMENT);
  EXPECT_EQ(DeskewCropPipeline(nullptr, {2, 120, kFill}, &angle_, nullptr), BAD_ARGUMENT);
  ImageRec out{};
  EXPECT_EQ(DeskewCropPipeline(page.rec(), {2, 120, kFill}, nullptr, &out), BAD_ARGUMENT);
  EXPECT_EQ(DeskewCropPipeline(page.rec(), {2, 120, kFill}, &angle_, nullptr), BAD_ARGUMENT);
  EXPECT_EQ(DeskewCropPipeline(page.rec(), {2, 120, nullptr}, &angle_, &out), BAD_ARGUMENT);
  EXPECT_EQ(DeskewCropPipeline(page.rec(), {0, 120, kFill}, &angle_, &out), BAD_ARGUMENT);
  // Without a border the missing outputs are not looked at.
  EXPECT_EQ(DeskewCropPipeline(dark.rec(), {2, 120, kFill}, nullptr, nullptr), BORDER_NOT_FOUND);
  EXPECT_EQ(out.pixels, nullptr);
}

TEST_F(DeskewCropPipelineTest, ReturnsTheStatusOfTheLastRelease) {
  const TestImage page = DrawPage({.degrees = 2});
  FailingImgbuf imgbuf;
  imgbuf.FailDestory(0, 33);
  EXPECT_EQ(Run({&page}), 33);
  EXPECT_NE(outImages_[0].pixels, nullptr);
  settings.ImageNum = 2;
  Release();
  imgbuf.FailDestory(0, 33);
  EXPECT_EQ(Run({&page, &page}), STATUS_OK);
  settings.ImageNum = 2;
  Release();
  imgbuf.FailDestory(1, 33);
  EXPECT_EQ(Run({&page, &page}), 33);
  Release();
  EXPECT_EQ(imgbuf.aliveImages(), 0);
}

TEST_F(DeskewCropPipelineTest, ReleasesEverythingOnEveryPath) {
  FailingImgbuf imgbuf;
  const TestImage page = DrawPage({.imageWidth = 260,
                                   .imageHeight = 300,
                                   .pageWidth = 180,
                                   .pageHeight = 200,
                                   .centerX = 130,
                                   .centerY = 150,
                                   .degrees = 2});
  for (int32_t n = 0;; ++n) {
    ASSERT_LT(n, 20);
    imgbuf.FailNew(n, 44);
    const int32_t status = Run({&page});
    Release();
    EXPECT_EQ(imgbuf.aliveImages(), 0);
    if (status == STATUS_OK) break;
    EXPECT_EQ(status, 44);
  }

  imgbuf.FailNew(-1, 0);

  // Outputs are kept apart: the test's own vectors must not ask the failing heap.
  const ImageRec record = *page.rec();
  ImageRec out{};
  int32_t status = STATUS_OK;
  int32_t failures = 0;
  ForEachHeapFailure(
      [&] {
        status = DeskewCropPipeline(&record, {INTERP_BILINEAR, 120, kFill}, &angle_, &out);
        if (out.pixels != nullptr) Imgbuf_Destory(&out);
      },
      [&](int32_t) {
        ++failures;
        EXPECT_EQ(status, OUT_OF_MEMORY);
        EXPECT_EQ(imgbuf.aliveImages(), 0);
      });
  EXPECT_GT(failures, 10);
  EXPECT_EQ(status, STATUS_OK);
}

TEST_F(DeskewCropPipelineTest, LeavesItsRecordsToTheHost) {
  PageRecords records;
  records.stage = PageStage::kCropped;
  settings.pageRecords = &records;
  const TestImage dark(200, 200, 8);
  ASSERT_EQ(Run({&dark}), BORDER_NOT_FOUND);
  EXPECT_EQ(records.stage, PageStage::kThreshold);

  const TestImage page = DrawPage({.degrees = 4});
  ASSERT_EQ(Run({&page}), STATUS_OK);
  EXPECT_EQ(records.stage, PageStage::kCropped);
  EXPECT_GT(records.traces.left.list.segmentCount, 100);
  EXPECT_GT(records.traces.bottom.pointCount, 100);
  ASSERT_GE(records.bestBorder, 0);
  for (const BorderVote& vote : records.votes) {
    EXPECT_TRUE(vote.hasAngle);
    EXPECT_LE(vote.votes, records.votes[records.bestBorder].votes);
  }
  EXPECT_EQ(records.degrees, angle_);
  // The page's outermost corners: half its turned width and height around (200, 250).
  EXPECT_NEAR(records.content.left, 200 - (140 * 0.9976 + 180 * 0.0698), 4);
  EXPECT_NEAR(records.content.right, 200 + (140 * 0.9976 + 180 * 0.0698), 4);
  EXPECT_EQ(outImages_[0].width, records.turnedContent.right - records.turnedContent.left + 1);
  EXPECT_EQ(outImages_[0].height, records.turnedContent.bottom - records.turnedContent.top + 1);
  EXPECT_GT(records.turnedWidth, outImages_[0].width);
  EXPECT_GT(records.turnedHeight, outImages_[0].height);
}

}  // namespace
}  // namespace vorlanepic
