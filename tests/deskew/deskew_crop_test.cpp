#include "deskew/deskew_crop.h"

#include <cmath>
#include <utility>
#include <vector>

#include "deskew/deskew_fixture.h"
#include "deskew/deskew_settings.h"
#include "deskew/page_records.h"

namespace vorlanepic::testing {

using namespace deskew;
namespace {

TEST(TurnOfBorder, MakesTheNearestOfLevelAndPlumb) {
  const std::pair<double, double> cases[] = {{-45, 315}, {45, 315},     {-2, 2},     {2, 358},
                                             {88, 2},    {-44.5, 44.5}, {45.5, 44.5}};
  for (const auto& [border, turn] : cases) EXPECT_EQ(TurnOfBorder(border), turn) << border;
  EXPECT_TRUE(std::signbit(TurnOfBorder(0.0)));
  EXPECT_FALSE(std::signbit(TurnOfBorder(-0.0)));
}

class DeskewCropPipelineTest : public DeskewTest {
 protected:
  DeskewCropPipelineTest() { AssignDeskewCropSettings(kParam); }
  ~DeskewCropPipelineTest() override { Release(); }

  int32_t Run(const std::vector<const TestImage*>& images, int32_t threshold = 120) {
    Release();
    std::vector<ImageRec> records;
    for (const TestImage* image : images) records.push_back(*image->rec());
    outImages_.assign(images.size(), ImageRec{});
    frame::settings.ImageNum = static_cast<int32_t>(images.size());
    return DeskewCropPipeline(records.data(), {INTERP_BILINEAR, threshold, kBlack}, &angle_,
                              outImages_.data());
  }

  void Release() {
    for (ImageRec& image : outImages_) {
      if (image.pixels != nullptr) Imgbuf_Destory(&image);
    }
  }

  const TestImage page_ = DrawPage({.degrees = 4});
  std::vector<ImageRec> outImages_;
};

TEST_F(DeskewCropPipelineTest, EstimatesAThresholdOnlyWhenAskedToAndTakesItsLow8Bits) {
  PageRecords records;
  frame::settings.pageRecords = &records;
  for (const auto& [asked, used] : {std::pair{0, 20}, {40, 40}, {256 + 100, 100}}) {
    ASSERT_EQ(Run({&page_}, asked), STATUS_OK);
    EXPECT_EQ(records.levels.low, used);
    EXPECT_EQ(records.levels.high, 255);
  }
  frame::settings.pageRecords = nullptr;
}

TEST_F(DeskewCropPipelineTest, KeepsTheOutputsMadeBeforeAFailure) {
  const TestImage small(50, 50, 8);
  EXPECT_EQ(Run({&page_, &small}), BAD_ARGUMENT);
  EXPECT_NE(outImages_[0].pixels, nullptr);
  EXPECT_EQ(outImages_[1].pixels, nullptr);
}

// The flag is 0 for the search in the source and asked for again in the turned image.
TEST_F(DeskewCropPipelineTest, LeavesTheFlagAtZeroUntilTheFirstTurn) {
  const auto expectFlag = [&](int32_t status, int32_t flag) {
    frame::settings.CropPixelFlag = 1;
    EXPECT_EQ(Run({&page_}), status);
    EXPECT_EQ(frame::settings.CropPixelFlag, flag);
  };
  expectFlag(STATUS_OK, 1);
  imgbuf_.FailNew(0, 9);  // the turned image
  expectFlag(9, 0);
  imgbuf_.FailNew(1, 9);  // the cut image
  expectFlag(9, 1);
  frame::settings.SegmentLen = 50;  // a vote without an angle comes before the search
  expectFlag(ANGLE_NOT_FOUND, 1);
}

TEST_F(DeskewCropPipelineTest, ReturnsTheStatusOfTheLastRelease) {
  for (const auto& [release, status] : {std::pair{0, 0}, {1, 33}}) {
    Release();
    outImages_.clear();
    imgbuf_.FailDestory(release, 33);
    EXPECT_EQ(Run({&page_, &page_}), status);
    EXPECT_NE(outImages_[1].pixels, nullptr);
  }
}

TEST_F(DeskewCropPipelineTest, LeavesItsRecordsToTheHost) {
  PageRecords records;
  records.stage = PageStage::kCropped;
  frame::settings.pageRecords = &records;
  const TestImage dark(200, 200, 8);
  ASSERT_EQ(Run({&dark}), BORDER_NOT_FOUND);
  EXPECT_EQ(records.stage, PageStage::kThreshold);

  ASSERT_EQ(Run({&page_}), STATUS_OK);
  EXPECT_EQ(records.stage, PageStage::kCropped);
  EXPECT_EQ(records.degrees, angle_);
  // The page's outermost corner: half its turned width from 200.
  EXPECT_NEAR(records.content.left, 200 - (140 * 0.9976 + 180 * 0.0698), 4);
  EXPECT_EQ(outImages_[0].width, records.turnedContent.right - records.turnedContent.left + 1);
  EXPECT_EQ(outImages_[0].height, records.turnedContent.bottom - records.turnedContent.top + 1);
}

}  // namespace
}  // namespace vorlanepic::testing
