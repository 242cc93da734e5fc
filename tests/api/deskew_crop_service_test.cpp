#include <algorithm>
#include <cmath>

#include "api/service_fixture.h"
#include "support/dib_image.h"
#include "support/failing_heap.h"
#include "support/profile_file.h"

namespace vorlanepic::testing {

using namespace deskew;
namespace {

class DeskewCropServiceTest : public ServiceTest {
 protected:
  int32_t RunEx(const ImageRec* images, const DeskewCropParam& param, ImageRec* out,
                int32_t imageNum = 1) {
    return ImageDeskewCropEx(images, INTERP_BILINEAR, 120, 0, 0, kBlack, &angle_, out, param,
                             imageNum);
  }
  int32_t RunDib(const DibRec* images, const DeskewCropParam& param, DibRec* out,
                 int32_t imageNum = 1) {
    return ImageDeskewCrop(images, INTERP_BILINEAR, 120, 0, 0, kBlack, &angle_, out, param,
                           imageNum);
  }
};

TEST_F(DeskewCropServiceTest, EveryMethodStraightensThePage) {
  for (const double degrees : {-12.0, -3.0, 0.0, 5.0}) {
    const TestImage page = DrawPage({.degrees = degrees});
    for (const int32_t method : {1, 2, 3, 7}) {
      ImageRec out{};
      ASSERT_EQ(RunEx(page.rec(), ForMethod(method), &out), STATUS_OK) << method;
      EXPECT_NEAR(out.width, 280, 5);
      EXPECT_NEAR(out.height, 360, 5);
      const bool inRadians = method == 1 || method == 3;
      const double turn = inRadians ? angle_ * 57.29578 : angle_;  // back: 360 - degrees clockwise
      EXPECT_NEAR(std::remainder(turn + degrees, 360.0), 0.0, 0.4) << method << ", " << degrees;
      Imgbuf_Destory(&out);
    }
  }
}

TEST_F(DeskewCropServiceTest, ACountOutOfRangeLeavesTheSettingsAndASettingOutOfRangeIsLeft) {
  const TestImage page = DrawPage({});
  ImageRec out{};
  DeskewCropParam param = kParam;
  param.SegmentLen = 51;
  api::settings.ImageNum = 7;
  EXPECT_EQ(RunEx(page.rec(), param, &out, 0), BAD_ARGUMENT);
  EXPECT_EQ(api::settings.SegmentLen, 0);
  EXPECT_EQ(api::settings.ImageNum, 7);
  EXPECT_EQ(RunEx(page.rec(), param, &out, 4), BAD_ARGUMENT);
  EXPECT_EQ(api::settings.ImageNum, 4);
  EXPECT_EQ(api::settings.SegmentLen, 51);
}

// A page of which no row has more than 85 light pixels is none for method 1. Method 2 asks for two
// pixels a row, but for 85 after a call of method 1.
TEST_F(DeskewCropServiceTest, MethodTwoSeesTheBorderMethodOfTheCallBefore) {
  const TestImage strip = DrawPage({.pageWidth = 80, .pageHeight = 300});
  ImageRec out{};
  ASSERT_EQ(RunEx(strip.rec(), ForMethod(2), &out), STATUS_OK);
  Imgbuf_Destory(&out);
  EXPECT_EQ(RunEx(strip.rec(), ForMethod(1), &out), BORDER_NOT_FOUND);
  EXPECT_EQ(RunEx(strip.rec(), ForMethod(2), &out), BORDER_NOT_FOUND);
  // A border, but too short a side.
  EXPECT_EQ(RunEx(strip.rec(), ForMethod(3), &out), BAD_ARGUMENT);
  ASSERT_EQ(RunEx(strip.rec(), ForMethod(2), &out), STATUS_OK);
  Imgbuf_Destory(&out);
}

TEST_F(DeskewCropServiceTest, TurnsSetsByTheirFirstImage) {
  const TestImage first = DrawPage({.degrees = 3});
  const TestImage second = DrawPage({.degrees = -8});
  const TestImage colour = DrawPage({.bitsPerPixel = 24, .degrees = -8});
  const ImageRec images[] = {*first.rec(), *second.rec(), *colour.rec()};
  for (const int32_t method : {1, 2, 3}) {
    const size_t count = method == 2 ? 3 : 2;  // depths are mixed by method 2 only
    ImageRec out[3] = {};
    ASSERT_EQ(RunEx(images, ForMethod(method), out, static_cast<int32_t>(count)), STATUS_OK);
    EXPECT_EQ(api::settings.ImageNum, method == 2 ? 1 : 2);
    for (size_t i = 0; i < count; ++i) {
      EXPECT_EQ(out[i].bitsPerPixel, images[i].bitsPerPixel);
      EXPECT_EQ(out[i].width, out[0].width);
      EXPECT_EQ(out[i].height, out[0].height);
    }
    for (size_t i = 0; i < count; ++i) Imgbuf_Destory(&out[i]);
  }
}

TEST_F(DeskewCropServiceTest, GivesTheRowsThatTheRecordsGive) {
  for (const int32_t depth : {1, 8, 24}) {
    const TestImage page = DrawPage({.bitsPerPixel = depth, .degrees = -4, .text = true});
    const TestDib dib(page);
    // The same rows in the same order: bottom row first.
    TestImage flipped = page;
    for (int32_t y = 0; y < 500; ++y) {
      std::copy_n(page.row(y), page.rec()->lineBytes, flipped.row(499 - y));
    }
    for (const int32_t method : {1, 2}) {
      ImageRec expected{};
      DibRec out{};
      ASSERT_EQ(RunEx(flipped.rec(), ForMethod(method), &expected), STATUS_OK);
      ASSERT_EQ(RunDib(dib.rec(), ForMethod(method), &out), STATUS_OK);
      EXPECT_TRUE(SameRows(out, expected)) << depth << " bits, method " << method;
      Imgbuf_Destory(&expected);
      ImgbufDestory(&out);
    }
  }
  EXPECT_EQ(imgbuf_.aliveImages(), 0);
}

TEST_F(DeskewCropServiceTest, PassesTheImageLibrarysCodesOn) {
  const TestDib dib(DrawPage({.degrees = 3}));
  DibRec out{};
  imgbuf_.FailDibCheck(0, 61);
  EXPECT_EQ(RunDib(dib.rec(), kParam, &out), 61);
  EXPECT_EQ(api::settings.ImageNum, 0);
  imgbuf_.FailDibNew(0, 62);
  EXPECT_EQ(RunDib(dib.rec(), kParam, &out), 62);
  imgbuf_.FailNew(1, 63);
  EXPECT_EQ(RunDib(dib.rec(), kParam, &out), 63);
  imgbuf_.FailCheck(0, 64);
  EXPECT_EQ(RunDib(dib.rec(), kParam, &out), 64);
  EXPECT_EQ(RunDib(dib.rec(), kParam, &out, INT32_MAX), OUT_OF_MEMORY);
  EXPECT_EQ(out.bits, nullptr);
  EXPECT_EQ(imgbuf_.aliveImages(), 0);
}

TEST_F(DeskewCropServiceTest, PassesCodesAboutLaterImagesOn) {
  const TestImage page = DrawPage({.degrees = 3});
  const TestImage colour = DrawPage({.bitsPerPixel = 24, .degrees = 3});
  const ImageRec images[] = {*page.rec(), *colour.rec()};
  const TestDib dib(page);
  const DibRec dibs[] = {*dib.rec(), *dib.rec()};
  for (const int32_t method : {1, 3}) {
    ImageRec out[2] = {};
    EXPECT_EQ(RunEx(images, ForMethod(method), out, 2), BAD_ARGUMENT);
    imgbuf_.FailCheck(1, 65);
    EXPECT_EQ(RunEx(images, ForMethod(method), out, 2), 65);
    DibRec outDibs[2] = {};
    imgbuf_.FailDibCheck(1, 66);
    EXPECT_EQ(RunDib(dibs, ForMethod(method), outDibs, 2), 66);
  }
  EXPECT_EQ(imgbuf_.aliveImages(), 0);
}

// Slanted lines give the borders; what is found in their rows are two strips, of which the right
// one ends the search from the left and the left one that from the right: columns 168..151.
TEST_F(DeskewCropServiceTest, TurnsAContentOfNegativeWidthIntoFill) {
  TestImage page(400, 400, 8);
  for (int32_t y = 0; y < 400; ++y) {
    const int32_t x = 60 + static_cast<int32_t>(y * std::tan(5 * 0.017453292519943295));
    page.Set(x, y, 255);
    page.Set(x + 240, y, 255);
  }
  FillRectangle(&page, 149, 100, 151, 299, 255);
  FillRectangle(&page, 168, 100, 170, 299, 255);
  DeskewCropParam param = kParam;
  param.SearchBorderPixelNum = param.SearchLimitNum = 1;
  param.PixelNum = 20;
  param.CropPixelNum = 8;
  const uint8_t fill[] = {170};
  ImageRec out{};
  ASSERT_EQ(
      ImageDeskewCropEx(page.rec(), INTERP_BILINEAR, 100, 0, 0, fill, &angle_, &out, param, 1),
      STATUS_OK);
  EXPECT_EQ(out.width, 19);
  EXPECT_EQ(out.height, 397);
  for (int32_t y = 0; y < out.height; ++y) {
    ASSERT_EQ(std::count(out.rows[y], out.rows[y] + out.width, fill[0]), out.width);
  }
  Imgbuf_Destory(&out);
}

// The first image is measured; the second is never read.
TEST_F(DeskewCropServiceTest, ALaterImageThatCannotBeUsedFailsTheSet) {
  const TestDib first(DrawPage({.degrees = 3}));
  for (const int32_t method : {1, 2}) {
    for (int32_t spoil = 0; spoil < 3; ++spoil) {
      TestDib second(DrawPage({.degrees = 3}));
      if (spoil == 0) second.rec()->infoHeader = nullptr;
      if (spoil == 1) second.rec()->bits = nullptr;
      if (spoil == 2) second.SetField(8, -500);
      const DibRec images[2] = {*first.rec(), *second.rec()};
      DibRec out[2] = {};
      EXPECT_EQ(RunDib(images, ForMethod(method), out, 2), BAD_ARGUMENT) << spoil;
      EXPECT_EQ(imgbuf_.aliveImages(), 0);
    }
  }
}

// The flag of a profile is 0 for the search in the source and asked for again in the turned image.
TEST_F(DeskewCropServiceTest, LeavesTheFlagAtZeroUntilTheFirstTurn) {
  const ProfileOnDisk profile("[ImageDeskew2]\nCropPixelFlag=1\n");
  const ProfileOnDisk longChunks("[ImageDeskew2]\nCropPixelFlag=1\nSegmentLen=50\n");
  const TestImage page = DrawPage({.degrees = 4});
  const auto expectFlag = [&](const ProfileOnDisk& file, int32_t status, int32_t flag) {
    DeskewCropParam param = kParam;
    param.useProfile = 1;
    param.profilePath = file.path();
    ImageRec out{};
    EXPECT_EQ(RunEx(page.rec(), param, &out), status);
    EXPECT_EQ(api::settings.CropPixelFlag, flag);
    if (out.pixels != nullptr) Imgbuf_Destory(&out);
  };
  expectFlag(profile, STATUS_OK, 1);
  imgbuf_.FailNew(0, 9);  // the turned image
  expectFlag(profile, 9, 0);
  imgbuf_.FailNew(1, 9);  // the cut image
  expectFlag(profile, 9, 1);
  expectFlag(longChunks, ANGLE_NOT_FOUND, 1);  // a vote without an angle comes before the search
}

TEST_F(DeskewCropServiceTest, ReleasesEverythingWhenTheHeapIsExhausted) {
  const TestDib dib(DrawPage({.degrees = 3}));
  for (const int32_t method : {1, 2}) {
    DibRec out{};
    int32_t status = STATUS_OK;
    int32_t failures = 0;
    ForEachHeapFailure(
        [&] {
          status = RunDib(dib.rec(), ForMethod(method), &out);
          if (out.bits != nullptr) ImgbufDestory(&out);
        },
        [&](int32_t) {
          EXPECT_EQ(imgbuf_.aliveImages(), 0);
          // A thread that can't be had is done without.
          if (status == STATUS_OK) return;
          ++failures;
          EXPECT_EQ(status, OUT_OF_MEMORY);
        });
    EXPECT_GT(failures, 10);
    EXPECT_EQ(status, STATUS_OK);
  }
}

TEST_F(DeskewCropServiceTest, TheAngleAloneMakesNoImageAndLeavesTheServiceAsItWas) {
  const TestDib dib(DrawPage({.degrees = 6}));
  const TestDib dark(TestImage(100, 100, 8));
  for (const int32_t method : {1, 2}) {
    ASSERT_EQ(ImageDeskewAngle(dib.rec(), 120, &angle_, ForMethod(method)), STATUS_OK);
    // Upside down in memory, the page is turned the other way.
    EXPECT_NEAR(method == 1 ? angle_ * 57.29578 : angle_, 6.0, 0.3);
    EXPECT_EQ(api::settings.AngleOnlyFlag, 0);
    EXPECT_EQ(ImageDeskewAngle(dark.rec(), 120, &angle_, ForMethod(method)), BORDER_NOT_FOUND);
    EXPECT_EQ(api::settings.AngleOnlyFlag, 0);
  }
  EXPECT_EQ(imgbuf_.newCalls(), 0);
}

}  // namespace
}  // namespace vorlanepic::testing
