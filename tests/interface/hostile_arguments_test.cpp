// What the exported functions make of arguments that no host should pass.
#include <climits>
#include <cmath>
#include <cstring>
#include <limits>

#include <gtest/gtest.h>

#include "support/page_drawing.h"
#include "vorlanepic/vorlanepic.h"

namespace vorlanepic::testing {
namespace {

class HostileArguments : public ::testing::Test {
 protected:
  TestImage scan = DrawPage({});
  ImageRec out{};
  double angle = 0;
  const uint8_t fill[3] = {0, 0, 0};
  const DeskewCropParam param{nullptr, 0, 2, 2, 8, 5, 3.5, 2.0, 10, 3, 5, 8, 2.0};
};

TEST_F(HostileArguments, ImageVorlaneExRefusesEachAndMakesNothing) {
  const ImageRec* page = scan.rec();
  EXPECT_EQ(ImageVorlaneEx(nullptr, 1, 0, 0, &angle, &out), BAD_ARGUMENT);
  EXPECT_EQ(ImageVorlaneEx(page, 1, 0, 0, nullptr, &out), BAD_ARGUMENT);
  EXPECT_EQ(ImageVorlaneEx(page, 1, 0, 0, &angle, nullptr), BAD_ARGUMENT);
  EXPECT_EQ(ImageVorlaneEx(page, 0, 0, 0, &angle, &out), BAD_ARGUMENT);
  EXPECT_EQ(ImageVorlaneEx(page, 4, 0, 0, &angle, &out), BAD_ARGUMENT);
  EXPECT_EQ(ImageVorlaneEx(page, 1, -1, 0, &angle, &out), BAD_ARGUMENT);
  EXPECT_EQ(ImageVorlaneEx(page, 1, 256, 0, &angle, &out), BAD_ARGUMENT);
  EXPECT_EQ(ImageVorlaneEx(page, 1, 0, 128, &angle, &out), BAD_ARGUMENT);
  const ImageRec empty{};
  EXPECT_EQ(ImageVorlaneEx(&empty, 1, 0, 0, &angle, &out), Imgbuf_Check(&empty));
  EXPECT_EQ(ImageVorlane(nullptr, 1, 0, 0, &out), BAD_ARGUMENT);
  EXPECT_EQ(out.pixels, nullptr);
}

TEST_F(HostileArguments, VorlanePicTellsRejectionFromFailure) {
  uint8_t pixel[64] = {};
  int32_t width = 4;
  int32_t height = 4;
  EXPECT_EQ(VorlanePic(nullptr, &width, &height, 8, 1, 0), 1);
  EXPECT_EQ(VorlanePic(pixel, nullptr, &height, 8, 1, 0), 1);
  EXPECT_EQ(VorlanePic(pixel, &width, nullptr, 8, 1, 0), 1);
  EXPECT_EQ(VorlanePic(pixel, &width, &height, 4, 1, 0), 1);
  EXPECT_EQ(VorlanePic(pixel, &width, &height, 8, 0, 0), 1);
  EXPECT_EQ(VorlanePic(pixel, &width, &height, 8, 1, 0), 0);  // no page in black
  width = 0;
  EXPECT_EQ(VorlanePic(pixel, &width, &height, 8, 1, 0), 0);  // one size is enough to pass
  width = INT32_MAX;
  height = INT32_MAX;
  EXPECT_EQ(VorlanePic(pixel, &width, &height, 24, 1, 0), 0);
  width = 0;
  height = -1;
  EXPECT_EQ(VorlanePicEx(pixel, &width, &height, 8, 1), 1);
}

TEST_F(HostileArguments, SettingsOutOfRangeAreRefused) {
  using Spoil = void (*)(DeskewCropParam&);
  const Spoil method2[] = {
      [](DeskewCropParam& p) { p.SearchBorderPixelNum = 0; },
      [](DeskewCropParam& p) { p.SearchBorderPixelNum = 11; },
      [](DeskewCropParam& p) { p.ToLineDistance = 21; },
      [](DeskewCropParam& p) { p.SegmentLen = 4; },
      [](DeskewCropParam& p) { p.SegmentLen = 51; },
      [](DeskewCropParam& p) { p.SearchLimitNum = 0; },
      [](DeskewCropParam& p) { p.PixelNum = 21; },
      [](DeskewCropParam& p) { p.CropPixelNum = 0; },
      [](DeskewCropParam& p) { p.GroupAngle = 0.5; },
      [](DeskewCropParam& p) { p.GroupAngle = std::numeric_limits<double>::quiet_NaN(); }};
  for (const Spoil spoil : method2) {
    DeskewCropParam bad = param;
    spoil(bad);
    EXPECT_EQ(ImageDeskewCropEx(scan.rec(), 2, 0, 0, 0, fill, &angle, &out, bad, 1), BAD_ARGUMENT);
  }
  const Spoil method1[] = {[](DeskewCropParam& p) { p.ToLineMixDis = 0; },
                           [](DeskewCropParam& p) { p.parallel = 5.1; },
                           [](DeskewCropParam& p) { p.perpendicular = -0.1; },
                           [](DeskewCropParam& p) { p.parallel = std::nan(""); }};
  for (const Spoil spoil : method1) {
    DeskewCropParam bad = param;
    bad.DeskewMethod = 1;
    spoil(bad);
    EXPECT_EQ(ImageDeskewCropEx(scan.rec(), 2, 0, 0, 0, fill, &angle, &out, bad, 1), BAD_ARGUMENT);
  }
  EXPECT_EQ(out.pixels, nullptr);
}

TEST_F(HostileArguments, DeskewCropExRefusesNullsAndCounts) {
  const ImageRec* page = scan.rec();
  for (const int32_t method : {1, 2, 3}) {
    DeskewCropParam p = param;
    p.DeskewMethod = method;
    EXPECT_EQ(ImageDeskewCropEx(page, 2, 0, 0, 0, fill, &angle, &out, p, 0), BAD_ARGUMENT);
    EXPECT_EQ(ImageDeskewCropEx(page, 2, 0, 0, 0, fill, &angle, &out, p, INT32_MIN), BAD_ARGUMENT);
    EXPECT_NE(ImageDeskewCropEx(nullptr, 2, 0, 0, 0, fill, &angle, &out, p, 1), STATUS_OK);
    EXPECT_NE(ImageDeskewCropEx(page, 2, 0, 0, 0, nullptr, &angle, &out, p, 1), STATUS_OK);
    EXPECT_NE(ImageDeskewCropEx(page, 2, 0, 0, 0, fill, nullptr, &out, p, 1), STATUS_OK);
    EXPECT_NE(ImageDeskewCropEx(page, 2, 0, 0, 0, fill, &angle, nullptr, p, 1), STATUS_OK);
    EXPECT_NE(ImageDeskewCropEx(page, 9, 0, 0, 0, fill, &angle, &out, p, 1), STATUS_OK);
    EXPECT_EQ(out.pixels, nullptr) << "method " << method;
  }
}

TEST_F(HostileArguments, DibServicesRefuseNullsAndBrokenHeaders) {
  DibRec dib{};
  DibRec made{};
  EXPECT_NE(ImageDeskewCrop(nullptr, 2, 0, 0, 0, fill, &angle, &made, param, 1), STATUS_OK);
  EXPECT_NE(ImageDeskewCrop(&dib, 2, 0, 0, 0, fill, &angle, &made, param, 1), STATUS_OK);
  EXPECT_NE(ImageDeskewAngle(nullptr, 0, &angle, param), STATUS_OK);
  EXPECT_NE(ImageDeskewCropWithLine(&dib, 2, 0, 0, 0, fill, &angle, &made, param, 0, 0, 0, 0, 1),
            STATUS_OK);
  EXPECT_EQ(GetAngleOMR(nullptr, 100, 300, 4, 20, &angle), -1);
  EXPECT_EQ(GetAngleOMR(&dib, 100, 300, 4, 20, &angle), -1);
  ASSERT_EQ(ImgbufNew(&dib, 300, 300, 8), 0);
  EXPECT_NE(ImageDeskewCrop(&dib, 2, 0, 0, 0, fill, &angle, nullptr, param, 1), STATUS_OK);
  EXPECT_NE(ImageDeskewCrop(&dib, 2, 0, 0, 0, fill, &angle, &made, param, 0), STATUS_OK);
  EXPECT_EQ(GetAngleOMR(&dib, 100, 300, 4, 20, nullptr), -1);
  dib.fileHeader[0] = 'X';
  EXPECT_EQ(GetAngleOMR(&dib, 100, 300, 4, 20, &angle), -1);
  const int32_t negative = -300;
  std::memcpy(dib.infoHeader + 8, &negative, 4);
  EXPECT_EQ(ImageDeskewCrop(&dib, 2, 0, 0, 0, fill, &angle, &made, param, 1), 1);
  EXPECT_EQ(made.bits, nullptr);
  ImgbufDestory(&dib);
}

TEST(HostileBlockArguments, GiveTheirFailureAndChangeNothing) {
  const uint8_t image[16] = {};
  const BlockMarkParam param{};
  const BlockRect whole{0, 0, 4, 4};
  BlockSetRec set{};
  EXPECT_EQ(ImageBlockMarkHorEx(nullptr, 4, 4, &param, &whole, &set), 1);
  EXPECT_EQ(ImageBlockMarkHorEx(image, 4, 4, nullptr, &whole, &set), 1);
  EXPECT_EQ(BWBlockMarkHorEx(image, 4, 4, &param, nullptr, &set), 1);
  EXPECT_EQ(BWBlockMarkHorEx(image, 4, 4, &param, &whole, nullptr), 1);
  for (const BlockRect& rect :
       {BlockRect{4, 0, 1, 1}, BlockRect{0, 4, 1, 1}, BlockRect{INT32_MAX, 0, 1, 1}}) {
    EXPECT_EQ(BWBlockMarkHorEx(image, 4, 4, &param, &rect, &set), 1);
  }
  for (const BlockRect& rect : {BlockRect{0, 0, INT32_MAX, INT32_MAX},
                                BlockRect{INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX},
                                BlockRect{0, 0, INT32_MIN, INT32_MIN}}) {
    EXPECT_EQ(BWBlockMarkHorEx(image, 4, 4, &param, &rect, &set), 0);
  }
  EXPECT_EQ(bw_label_left(nullptr, 4, 4, &set), 0);
  EXPECT_EQ(bw_label_center(image, 0, 0, &set), 0);
  EXPECT_EQ(bw_label_left_area(image, 4, 4, nullptr, &set), 0);
  const LabelArea extreme{INT32_MIN, INT32_MAX, INT32_MIN, INT32_MAX};
  EXPECT_EQ(bw_label_center_area(image, 4, 4, &extreme, &set), 1);
  EXPECT_EQ(set.count, 0);
  EXPECT_EQ(overlap_len(INT32_MIN, INT32_MAX, 5, 9), 5);
  EXPECT_EQ(block_distance(nullptr, nullptr), 0.0);
  EXPECT_EQ(DestoryBlockSetRec(nullptr), 1);
  EXPECT_EQ(DestoryBlockSetRec(&set), 0);
}

TEST(HostileBarArguments, GiveMinusOneAndStoreNothing) {
  const uint8_t image[16] = {};
  double angle = 7;
  EXPECT_EQ(get_angle_omr(nullptr, 4, 4, 100, 300, 4, 20, &angle), -1);
  EXPECT_EQ(get_angle_omr(image, 0, 4, 100, 300, 4, 20, &angle), -1);
  EXPECT_EQ(get_angle_omr(image, 4, -4, 100, 300, 4, 20, &angle), -1);
  EXPECT_EQ(get_angle_omr(image, 4, 4, 100, 0, 0, 0, &angle), -1);
  EXPECT_EQ(get_angle_omr(image, 4, 4, INT32_MIN, INT32_MIN, INT32_MIN, INT32_MIN, &angle), -1);
  EXPECT_EQ(get_angle_omr(image, 4, 4, 100, 300, 4, 20, nullptr), -1);
  EXPECT_EQ(angle, 7);
}

}  // namespace
}  // namespace vorlanepic::testing
