#include "deskew/deskew_crop.h"

#include <cmath>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "deskew/page_records.h"
#include "frame/settings.h"
#include "support/failing_imgbuf.h"
#include "support/page_drawing.h"

namespace vorlanepic {
namespace {

using testing::DrawPage;
using testing::FailingImgbuf;
using testing::TestImage;

TEST(TurnOfBorder, MakesTheNearestOfLevelAndPlumb) {
  for (const auto& [border, turn] : {std::pair{-45.0, 315.0},
                                     {45, 315},
                                     {-2, 2},
                                     {2, 358},
                                     {88, 2},
                                     {-44.5, 44.5},
                                     {45.5, 44.5}}) {
    EXPECT_EQ(TurnOfBorder(border), turn) << border;
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

TEST_F(DeskewCropPipelineTest, EstimatesAThresholdOnlyWhenAskedToAndTakesItsLow8Bits) {
  const TestImage page = DrawPage({.background = 20});
  for (const auto& [asked, used] : {std::pair{0, 20}, {40, 40}, {256 + 100, 100}}) {
    AssignSettings();
    PageRecords records;
    settings.pageRecords = &records;
    ASSERT_EQ(Run({&page}, asked), STATUS_OK);
    EXPECT_EQ(records.levels.low, used);
    EXPECT_EQ(records.levels.high, 255);
  }
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

TEST_F(DeskewCropPipelineTest, ReturnsTheStatusOfTheLastRelease) {
  const TestImage page = DrawPage({.degrees = 2});
  FailingImgbuf imgbuf;
  for (const auto& [release, status] : {std::pair{0, 0}, {1, 33}}) {
    settings.ImageNum = 2;
    Release();
    imgbuf.FailDestory(release, 33);
    EXPECT_EQ(Run({&page, &page}), status);
    EXPECT_NE(outImages_[1].pixels, nullptr);
  }
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
  ASSERT_GE(records.bestBorder, 0);
  for (const BorderVote& vote : records.votes) {
    EXPECT_LE(vote.votes, records.votes[records.bestBorder].votes);
  }
  EXPECT_EQ(records.degrees, angle_);
  // The page's outermost corner: half its turned width from 200.
  EXPECT_NEAR(records.content.left, 200 - (140 * 0.9976 + 180 * 0.0698), 4);
  EXPECT_EQ(outImages_[0].width, records.turnedContent.right - records.turnedContent.left + 1);
  EXPECT_EQ(outImages_[0].height, records.turnedContent.bottom - records.turnedContent.top + 1);
}

}  // namespace
}  // namespace vorlanepic
