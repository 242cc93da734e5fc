#include <cstring>
#include <span>
#include <tuple>
#include <vector>

#include "api/service_fixture.h"
#include "deskew/pruned_rotation.h"
#include "frame/scratch.h"

namespace vorlanepic::testing {

using namespace deskew;
namespace {

class PrunedRotationServiceTest : public ServiceTest {
 protected:
  // What the driver makes of the same page with the given filling; settings as the call left them.
  void RunDriver(const TestImage& page, int32_t mode, int32_t threshold, const uint8_t* fill) {
    deskew::PageRecords records;
    ASSERT_EQ(deskew::RunPrunedRotation(api::settings, std::span(page.rec(), 1),
                                        {mode, threshold, 0, 0, fill}, &angle_,
                                        std::span(expected_.rec(), 1), &records),
              STATUS_OK);
  }

  // The page's rows in a buffer that also holds a result somewhat larger.
  std::vector<uint8_t> BufferOf(const TestImage& page) {
    std::vector<uint8_t> buffer(static_cast<size_t>(page.rec()->imageBytes) * 2);
    std::memcpy(buffer.data(), page.rec()->pixels, static_cast<size_t>(page.rec()->imageBytes));
    return buffer;
  }

  frame::ScratchImage expected_;
  int32_t width_ = 400;
  int32_t height_ = 500;
};

TEST_F(PrunedRotationServiceTest, WritesTheStraightPageOverTheCallersBuffer) {
  constexpr uint8_t kBlue[3] = {255, 0, 0};
  for (const int32_t depth : {1, 8, 24}) {
    const TestImage page = DrawPage({.bitsPerPixel = depth, .degrees = 5});
    std::vector<uint8_t> buffer = BufferOf(page);
    width_ = 400;
    height_ = 500;
    // Of the threshold only the low byte counts: 356 is 100.
    EXPECT_EQ(VorlanePic(buffer.data(), &width_, &height_, depth, INTERP_BILINEAR, 356), 1);
    expected_.Release();
    RunDriver(page, INTERP_BILINEAR, 100, kBlue);
    EXPECT_EQ(width_, expected_.rec()->width);
    EXPECT_EQ(height_, expected_.rec()->height);
    EXPECT_EQ(std::memcmp(buffer.data(), expected_.rec()->pixels,
                          static_cast<size_t>(expected_.rec()->imageBytes)),
              0);
  }
}

TEST_F(PrunedRotationServiceTest, AFailedRunLeavesTheBufferAlone) {
  const TestImage blank(400, 500, 8);
  const TestImage page = DrawPage({});
  const auto expectFailure = [&](const TestImage& image) {
    std::vector<uint8_t> buffer = BufferOf(image);
    const std::vector<uint8_t> before = buffer;
    EXPECT_EQ(VorlanePicEx(buffer.data(), &width_, &height_, 8, INTERP_NEAREST), 0);
    EXPECT_EQ(buffer, before);
    EXPECT_EQ(width_, 400);
    EXPECT_EQ(height_, 500);
    EXPECT_EQ(imgbuf_.aliveImages(), 0);
  };
  expectFailure(blank);
  for (const int32_t call : {0, 1}) {  // the source and the result
    imgbuf_.FailNew(call, 77);
    expectFailure(page);
  }
}

TEST_F(PrunedRotationServiceTest, GivesTheStraightPageAndItsAngle) {
  const TestImage page = DrawPage({.bitsPerPixel = 24, .degrees = -7});
  frame::ScratchImage result;
  frame::ScratchImage again;
  double angle = -1;
  ASSERT_EQ(ImageVorlaneEx(page.rec(), INTERP_BICUBIC, 90, 0, &angle, result.rec()), STATUS_OK);
  ASSERT_EQ(ImageVorlane(page.rec(), INTERP_BICUBIC, 90, 0, again.rec()), STATUS_OK);
  RunDriver(page, INTERP_BICUBIC, 90, kBlack);
  EXPECT_EQ(angle, angle_);
  EXPECT_TRUE(SamePixels(*result.rec(), *expected_.rec()));
  EXPECT_TRUE(SamePixels(*again.rec(), *expected_.rec()));
}

TEST_F(PrunedRotationServiceTest, AssignsItsSettingsWhenTheArgumentsPass) {
  const TestImage blank(400, 500, 8);
  ImageRec result{};
  api::settings.ExtremeAnchorFlag = 1.0;
  api::settings.SegmentLen = 17;
  EXPECT_EQ(ImageVorlaneEx(blank.rec(), INTERP_NEAREST, 256, 0, &angle_, &result), BAD_ARGUMENT);
  EXPECT_EQ(api::settings.BorderMethod, 0);
  EXPECT_EQ(api::settings.ExtremeAnchorFlag, 1.0);
  EXPECT_EQ(ImageVorlaneEx(blank.rec(), INTERP_NEAREST, 0, 0, &angle_, &result), BORDER_NOT_FOUND);
  EXPECT_EQ(angle_, -1);
  EXPECT_EQ(std::tie(api::settings.BorderMethod, api::settings.ExtremeAnchorFlag,
                     api::settings.SegmentLen),
            std::tuple(1, 0.0, 17));
  EXPECT_EQ(std::tie(api::settings.SegmentMaxGap, api::settings.SegmentPointNum,
                     api::settings.SegmentMinPointNum),
            std::tuple(6, 6, 4));
  EXPECT_EQ(std::tie(api::settings.SearchBorderPixelNum, api::settings.parallel,
                     api::settings.perpendicular),
            std::tuple(2, 3.5, 2.0));
}

TEST_F(PrunedRotationServiceTest, TheSimplerCallsCountOneImageEvenWhenRefused) {
  api::settings.ImageNum = 5;
  EXPECT_EQ(VorlanePic(nullptr, nullptr, nullptr, 8, INTERP_NEAREST, 0), 1);
  EXPECT_EQ(api::settings.ImageNum, 5);
  EXPECT_EQ(VorlanePicEx(nullptr, nullptr, nullptr, 8, INTERP_NEAREST), 1);
  EXPECT_EQ(api::settings.ImageNum, 1);
  api::settings.ImageNum = 5;
  EXPECT_EQ(ImageVorlane(nullptr, INTERP_NEAREST, 0, 0, nullptr), BAD_ARGUMENT);
  EXPECT_EQ(api::settings.ImageNum, 1);
}

}  // namespace
}  // namespace vorlanepic::testing
