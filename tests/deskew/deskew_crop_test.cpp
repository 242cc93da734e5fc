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

class DeskewCropPipelineTest : public DeskewTest {
 protected:
  DeskewCropPipelineTest() { AssignDeskewCropSettings(kParam, {}, &settings_); }
  ~DeskewCropPipelineTest() override { Release(); }

  int32_t Run(const std::vector<const TestImage*>& images, int32_t threshold = 120) {
    Release();
    std::vector<ImageRec> records;
    for (const TestImage* image : images) records.push_back(*image->rec());
    outImages_.assign(images.size(), ImageRec{});
    page_ = {};
    return DeskewCropPipeline(settings_, records.data(), records.size(),
                              {INTERP_BILINEAR, threshold, kBlack}, &angle_, outImages_.data(),
                              &page_);
  }

  void Release() {
    for (ImageRec& image : outImages_) {
      if (image.pixels != nullptr) Imgbuf_Destory(&image);
    }
  }

  const TestImage drawn_ = DrawPage({.degrees = 4});
  std::vector<ImageRec> outImages_;
  PageRecords page_;
};

TEST_F(DeskewCropPipelineTest, EstimatesAThresholdOnlyWhenAskedToAndTakesItsLow8Bits) {
  for (const auto& [asked, used] : {std::pair{0, 20}, {40, 40}, {256 + 100, 100}}) {
    ASSERT_EQ(Run({&drawn_}, asked), STATUS_OK);
    EXPECT_EQ(page_.levels.low, used);
    EXPECT_EQ(page_.levels.high, 255);
  }
}

TEST_F(DeskewCropPipelineTest, KeepsTheOutputsMadeBeforeAFailure) {
  const TestImage small(50, 50, 8);
  EXPECT_EQ(Run({&drawn_, &small}), BAD_ARGUMENT);
  EXPECT_NE(outImages_[0].pixels, nullptr);
  EXPECT_EQ(outImages_[1].pixels, nullptr);
}

TEST_F(DeskewCropPipelineTest, ReturnsTheStatusOfTheLastRelease) {
  for (const auto& [release, status] : {std::pair{0, 0}, {1, 33}}) {
    Release();
    outImages_.clear();
    imgbuf_.FailDestory(release, 33);
    EXPECT_EQ(Run({&drawn_, &drawn_}), status);
    EXPECT_NE(outImages_[1].pixels, nullptr);
  }
}

TEST_F(DeskewCropPipelineTest, LeavesItsRecords) {
  const TestImage dark(200, 200, 8);
  ASSERT_EQ(Run({&dark}), BORDER_NOT_FOUND);
  EXPECT_EQ(page_.stage, PageStage::kThreshold);

  ASSERT_EQ(Run({&drawn_}), STATUS_OK);
  EXPECT_EQ(page_.stage, PageStage::kCropped);
  EXPECT_EQ(page_.degrees, angle_);
  // The page's outermost corner: half its turned width from 200.
  EXPECT_NEAR(page_.content.left, 200 - (140 * 0.9976 + 180 * 0.0698), 4);
  EXPECT_EQ(outImages_[0].width, page_.turnedContent.right - page_.turnedContent.left + 1);
  EXPECT_EQ(outImages_[0].height, page_.turnedContent.bottom - page_.turnedContent.top + 1);
}

}  // namespace
}  // namespace vorlanepic::testing
