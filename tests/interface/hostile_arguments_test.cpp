// What the exported functions make of arguments that no host should pass.
#include <climits>
#include <cmath>
#include <cstring>

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
  EXPECT_EQ(VorlanePic(pixel, &width, &height, 4, 1, 0), 1);
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
  DeskewCropParam bad = param;
  bad.GroupAngle = std::nan("");
  EXPECT_EQ(ImageDeskewCropEx(scan.rec(), 2, 0, 0, 0, fill, &angle, &out, bad, 1), BAD_ARGUMENT);
  bad.DeskewMethod = 1;
  bad.parallel = std::nan("");
  EXPECT_EQ(ImageDeskewCropEx(scan.rec(), 2, 0, 0, 0, fill, &angle, &out, bad, 1), BAD_ARGUMENT);
  for (const int32_t method : {1, 2, 3}) {
    DeskewCropParam p = param;
    p.DeskewMethod = method;
    const ImageRec* page = scan.rec();
    EXPECT_EQ(ImageDeskewCropEx(page, 2, 0, 0, 0, fill, &angle, &out, p, 0), BAD_ARGUMENT);
    EXPECT_EQ(ImageDeskewCropEx(page, 2, 0, 0, 0, fill, &angle, &out, p, INT32_MIN), BAD_ARGUMENT);
    EXPECT_NE(ImageDeskewCropEx(nullptr, 2, 0, 0, 0, fill, &angle, &out, p, 1), STATUS_OK);
    EXPECT_NE(ImageDeskewCropEx(page, 2, 0, 0, 0, nullptr, &angle, &out, p, 1), STATUS_OK);
    EXPECT_NE(ImageDeskewCropEx(page, 2, 0, 0, 0, fill, nullptr, &out, p, 1), STATUS_OK);
    EXPECT_NE(ImageDeskewCropEx(page, 2, 0, 0, 0, fill, &angle, nullptr, p, 1), STATUS_OK);
    EXPECT_NE(ImageDeskewCropEx(page, 9, 0, 0, 0, fill, &angle, &out, p, 1), STATUS_OK);
  }
  EXPECT_EQ(out.pixels, nullptr);
}

TEST_F(HostileArguments, DibServicesRefuseNullsAndBrokenHeaders) {
  DibRec dib{};
  DibRec made{};
  EXPECT_NE(ImageDeskewCrop(nullptr, 2, 0, 0, 0, fill, &angle, &made, param, 1), STATUS_OK);
  EXPECT_NE(ImageDeskewCrop(&dib, 2, 0, 0, 0, fill, &angle, &made, param, 1), STATUS_OK);
  EXPECT_NE(ImageDeskewAngle(nullptr, 0, &angle, param), STATUS_OK);
  EXPECT_NE(ImageDeskewCropWithLine(&dib, 2, 0, 0, 0, fill, &angle, &made, param, 0, 0, 0, 0, 1),
            STATUS_OK);
  EXPECT_EQ(GetAngleOMR(&dib, 100, 300, 4, 20, &angle), -1);
  ASSERT_EQ(ImgbufNew(&dib, 300, 300, 8), 0);
  EXPECT_NE(ImageDeskewCrop(&dib, 2, 0, 0, 0, fill, &angle, nullptr, param, 1), STATUS_OK);
  EXPECT_NE(ImageDeskewCrop(&dib, 2, 0, 0, 0, fill, &angle, &made, param, 0), STATUS_OK);
  const int32_t negative = -300;
  std::memcpy(dib.infoHeader + 8, &negative, 4);
  EXPECT_EQ(ImageDeskewCrop(&dib, 2, 0, 0, 0, fill, &angle, &made, param, 1), 1);
  EXPECT_EQ(made.bits, nullptr);
  ImgbufDestory(&dib);
}

TEST(HostileBlockArguments, GiveTheirFailureAndChangeNothing) {
  const uint8_t image[16] = {};
  const BlockMarkParam param{};
  BlockSetRec set{};
  constexpr int32_t kMost = INT32_MAX;
  constexpr int32_t kLeast = INT32_MIN;
  for (const BlockRect& rect : {BlockRect{4, 0, 1, 1}, {0, 4, 1, 1}, {kMost, 0, 1, 1}}) {
    EXPECT_EQ(BWBlockMarkHorEx(image, 4, 4, &param, &rect, &set), 1);
  }
  for (const BlockRect& rect :
       {BlockRect{0, 0, kMost, kMost}, {kLeast, kLeast, kMost, kMost}, {0, 0, kLeast, kLeast}}) {
    EXPECT_EQ(BWBlockMarkHorEx(image, 4, 4, &param, &rect, &set), 0);
  }
  const LabelArea extreme{kLeast, kMost, kLeast, kMost};
  EXPECT_EQ(bw_label_center_area(image, 4, 4, &extreme, &set), 1);
  EXPECT_EQ(set.count, 0);
  EXPECT_EQ(overlap_len(kLeast, kMost, 5, 9), 5);
  EXPECT_EQ(DestoryBlockSetRec(&set), 0);
  double angle = 7;
  EXPECT_EQ(get_angle_omr(image, 4, -4, 100, 300, 4, 20, &angle), -1);
  EXPECT_EQ(get_angle_omr(image, 4, 4, kLeast, kLeast, kLeast, kLeast, &angle), -1);
  EXPECT_EQ(angle, 7);
}

}  // namespace
}  // namespace vorlanepic::testing
