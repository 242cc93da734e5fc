#include <cstring>
#include <span>
#include <vector>

#include <gtest/gtest.h>

#include "deskew/page_records.h"
#include "deskew/pruned_rotation.h"
#include "frame/scratch.h"
#include "frame/settings.h"
#include "support/failing_imgbuf.h"
#include "support/page_drawing.h"
#include "vorlanepic/vorlanepic.h"

namespace vorlanepic {
namespace {

using testing::DrawPage;
using testing::FailingImgbuf;
using testing::SamePixels;
using testing::TestImage;

class VorlaneEntryTest : public ::testing::Test {
 protected:
  VorlaneEntryTest() { settings = {}; }
  ~VorlaneEntryTest() override { settings = {}; }

  // What the driver makes of the same page with the given filling; settings as the call left them.
  void RunDriver(const TestImage& page, int32_t mode, int32_t threshold, const uint8_t* fill) {
    settings.ExtremeAnchorFlag = 0.0;
    ASSERT_EQ(RunPrunedRotation(std::span(page.rec(), 1), {mode, threshold, 0, 0, fill}, &angle_,
                                std::span(expected_.rec(), 1)),
              STATUS_OK);
  }

  // The page's rows in a buffer that also holds a result somewhat larger.
  std::vector<uint8_t> BufferOf(const TestImage& page) {
    std::vector<uint8_t> buffer(static_cast<size_t>(page.rec()->imageBytes) * 2);
    std::memcpy(buffer.data(), page.rec()->pixels, static_cast<size_t>(page.rec()->imageBytes));
    return buffer;
  }

  double angle_ = 0;
  ScratchImage expected_;
};

TEST_F(VorlaneEntryTest, WritesTheStraightPageOverTheCallersBuffer) {
  constexpr uint8_t kBlue[3] = {255, 0, 0};
  for (const int32_t depth : {1, 8, 24}) {
    const TestImage page = DrawPage({.bitsPerPixel = depth, .degrees = 5});
    std::vector<uint8_t> buffer = BufferOf(page);
    int32_t width = 400;
    int32_t height = 500;
    // Of the threshold only the low byte counts: 356 is 100.
    EXPECT_EQ(VorlanePic(buffer.data(), &width, &height, depth, INTERP_BILINEAR, 356), 1);
    expected_.Release();
    RunDriver(page, INTERP_BILINEAR, 100, kBlue);
    EXPECT_EQ(width, expected_.rec()->width);
    EXPECT_EQ(height, expected_.rec()->height);
    EXPECT_EQ(std::memcmp(buffer.data(), expected_.rec()->pixels,
                          static_cast<size_t>(expected_.rec()->imageBytes)),
              0);
  }
}

TEST_F(VorlaneEntryTest, AFailedRunLeavesTheBufferAlone) {
  const TestImage blank(400, 500, 8);
  const TestImage page = DrawPage({});
  FailingImgbuf imgbuf;
  const auto expectFailure = [&](const TestImage& image) {
    std::vector<uint8_t> buffer = BufferOf(image);
    const std::vector<uint8_t> before = buffer;
    int32_t width = 400;
    int32_t height = 500;
    EXPECT_EQ(VorlanePicEx(buffer.data(), &width, &height, 8, INTERP_NEAREST), 0);
    EXPECT_EQ(buffer, before);
    EXPECT_EQ(width, 400);
    EXPECT_EQ(height, 500);
    EXPECT_EQ(imgbuf.aliveImages(), 0);
  };
  expectFailure(blank);
  for (const int32_t call : {0, 1}) {  // the source and the result
    imgbuf.FailNew(call, 77);
    expectFailure(page);
  }
}

TEST_F(VorlaneEntryTest, GivesTheStraightPageAndItsAngle) {
  constexpr uint8_t kBlack[3] = {0, 0, 0};
  const TestImage page = DrawPage({.bitsPerPixel = 24, .degrees = -7});
  ScratchImage result;
  ScratchImage again;
  double angle = -1;
  ASSERT_EQ(ImageVorlaneEx(page.rec(), INTERP_BICUBIC, 90, 0, &angle, result.rec()), STATUS_OK);
  ASSERT_EQ(ImageVorlane(page.rec(), INTERP_BICUBIC, 90, 0, again.rec()), STATUS_OK);
  RunDriver(page, INTERP_BICUBIC, 90, kBlack);
  EXPECT_EQ(angle, angle_);
  EXPECT_TRUE(SamePixels(*result.rec(), *expected_.rec()));
  EXPECT_TRUE(SamePixels(*again.rec(), *expected_.rec()));
}

// A light background of 120: with the band about it the background itself is what is found, with
// the threshold alone the page and the background are one.
TEST_F(VorlaneEntryTest, BackgroundChoosesTheBandOfLevels) {
  PageRecords records;
  settings.pageRecords = &records;
  const TestImage page = DrawPage({.background = 120});
  double angle = 0;
  ScratchImage result;
  ImageVorlaneEx(page.rec(), INTERP_NEAREST, 225, 255, &angle, result.rec());
  EXPECT_EQ(records.stage, PageStage::kTurned);
  EXPECT_EQ(records.levels.low, 216);
  EXPECT_EQ(records.levels.high, 234);
}

TEST_F(VorlaneEntryTest, AssignsItsSettingsWhenTheArgumentsPass) {
  const TestImage blank(400, 500, 8);
  double angle = -1;
  ImageRec result{};
  settings.ExtremeAnchorFlag = 1.0;
  settings.SegmentLen = 17;
  EXPECT_EQ(ImageVorlaneEx(blank.rec(), INTERP_NEAREST, 256, 0, &angle, &result), BAD_ARGUMENT);
  EXPECT_EQ(settings.BorderMethod, 0);
  EXPECT_EQ(settings.ExtremeAnchorFlag, 1.0);
  EXPECT_EQ(ImageVorlaneEx(blank.rec(), INTERP_NEAREST, 0, 0, &angle, &result), BORDER_NOT_FOUND);
  EXPECT_EQ(angle, -1);
  EXPECT_EQ(settings.BorderMethod, 1);
  EXPECT_EQ(settings.ExtremeAnchorFlag, 0.0);
  EXPECT_EQ(settings.SegmentLen, 17);
  EXPECT_EQ(settings.SegmentMaxGap, 6);
  EXPECT_EQ(settings.SegmentPointNum, 6);
  EXPECT_EQ(settings.SegmentMinPointNum, 4);
  EXPECT_EQ(settings.SearchBorderPixelNum, 2);
  EXPECT_EQ(settings.parallel, 3.5);
  EXPECT_EQ(settings.perpendicular, 2.0);
}

TEST_F(VorlaneEntryTest, TheSimplerCallsCountOneImageEvenWhenRefused) {
  settings.ImageNum = 5;
  EXPECT_EQ(ImageVorlane(nullptr, INTERP_NEAREST, 0, 0, nullptr), BAD_ARGUMENT);
  EXPECT_EQ(settings.ImageNum, 1);
  settings.ImageNum = 5;
  EXPECT_EQ(VorlanePicEx(nullptr, nullptr, nullptr, 8, INTERP_NEAREST), 1);
  EXPECT_EQ(settings.ImageNum, 1);
  settings.ImageNum = 5;
  EXPECT_EQ(VorlanePic(nullptr, nullptr, nullptr, 8, INTERP_NEAREST, 0), 1);
  EXPECT_EQ(settings.ImageNum, 5);
}

}  // namespace
}  // namespace vorlanepic
