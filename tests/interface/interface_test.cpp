// Whole roads through the shared libraries.
#include <cmath>
#include <cstring>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "support/page_drawing.h"
#include "vorlanepic/vorlanepic.h"

namespace vorlanepic::testing {
namespace {

TEST(ImageVorlaneEx, FindsAngleAndSizeOfADrawnPage) {
  DrawnPage page{.imageWidth = 600, .imageHeight = 640, .centerX = 300, .centerY = 320};
  page.text = true;
  for (const int32_t depth : {1, 8, 24}) {
    for (const double degrees : {-30.0, -1.0, 0.0, 0.4, 11.0, 40.0}) {
      page.bitsPerPixel = depth;
      page.degrees = degrees;
      SCOPED_TRACE(::testing::PrintToString(std::pair(depth, degrees)));
      double angle = -1;
      ImageRec straight{};
      ASSERT_EQ(ImageVorlaneEx(DrawPage(page).rec(), INTERP_BILINEAR, 0, 0, &angle, &straight), 0);
      // Pages are drawn clockwise, the turn is the rest of a circle. At 1 bit the border points
      // lie on a coarser grid.
      const double error = std::remainder(angle * 57.29577951308232 + degrees, 360);
      EXPECT_NEAR(error, 0, depth == 1 ? 0.6 : 0.3);
      EXPECT_NEAR(straight.width, page.pageWidth, 8);
      EXPECT_NEAR(straight.height, page.pageHeight, 8);
      EXPECT_EQ(straight.bitsPerPixel, depth);
      EXPECT_EQ(Imgbuf_Check(&straight), 0);
      EXPECT_EQ(Imgbuf_Destory(&straight), 0);
    }
  }
}

// A device-independent image with the rows of `image`, bottom row first.
DibRec ToDib(const TestImage& image) {
  DibRec dib{};
  const ImageRec& rec = *image.rec();
  EXPECT_EQ(ImgbufNew(&dib, rec.width, rec.height, rec.bitsPerPixel), 0);
  for (int32_t y = 0; y < rec.height; ++y) {
    std::memcpy(dib.bits + ptrdiff_t{rec.height - 1 - y} * rec.lineBytes, image.row(y),
                static_cast<size_t>(rec.lineBytes));
  }
  return dib;
}

DeskewCropParam MethodParam(int32_t method) {
  return {nullptr, 0, method, 2, 8, 5, 3.5, 2.0, 10, 3, 5, 8, 2.0};
}

TEST(ImageDeskewCrop, MakesANewImageWithEveryMethod) {
  DrawnPage page{.imageWidth = 900, .imageHeight = 1000, .pageWidth = 700, .pageHeight = 800};
  page.centerX = 450;
  page.centerY = 500;
  page.degrees = 2;
  page.background = 10;
  DibRec dib = ToDib(DrawPage(page));
  const uint8_t fill[3] = {0, 0, 0};
  for (const int32_t method : {1, 2, 3}) {
    double angle = 0;
    DibRec out{};
    const DeskewCropParam param = MethodParam(method);
    SCOPED_TRACE(method);
    ASSERT_EQ(ImageDeskewCrop(&dib, INTERP_BILINEAR, 80, 0, 0, fill, &angle, &out, param, 1), 0);
    int32_t width = 0;
    std::memcpy(&width, out.infoHeader + 4, 4);
    EXPECT_NEAR(width, page.pageWidth, 8);
    EXPECT_EQ(ImgbufDestory(&out), 0);

    double measured = 0;
    ASSERT_EQ(ImageDeskewAngle(&dib, 80, &measured, param), STATUS_OK);
    EXPECT_EQ(measured, angle);
  }
  ImgbufDestory(&dib);
}

TEST(ImageDeskewCropWithLine, TakesTheAngleOfTheBar) {
  DrawnBarSheet sheet{.page = {}, .barLength = 700, .barThickness = 10, .barY = -200};
  sheet.page = {.imageWidth = 1200, .imageHeight = 900, .pageWidth = 1000, .pageHeight = 700};
  sheet.page.centerX = 600;
  sheet.page.centerY = 450;
  sheet.page.degrees = 1.5;
  DibRec dib = ToDib(DrawBarSheet(sheet));
  const uint8_t fill[3] = {255, 255, 255};
  double angle = 0;
  DibRec out{};
  ASSERT_EQ(ImageDeskewCropWithLine(&dib, INTERP_BILINEAR, 100, 0, 0, fill, &angle, &out,
                                    MethodParam(2), 0, 0, 0, 0, 1),
            STATUS_OK);
  EXPECT_NEAR(angle, 1.5, 0.1);
  EXPECT_EQ(ImgbufCheck(&out), 0);
  ImgbufDestory(&out);

  double radians = 0;
  ASSERT_EQ(GetAngleOMR(&dib, 100, 600, 4, 20, &radians), 0);
  EXPECT_EQ(radians * 57.29577951308232, angle);
  ImgbufDestory(&dib);
}

}  // namespace
}  // namespace vorlanepic::testing
