// Whole roads through the shared libraries.
#include <cmath>
#include <utility>

#include <gtest/gtest.h>

#include "interface/method_param.h"
#include "support/dib_image.h"
#include "vorlanepic/vorlanepic.h"

namespace vorlanepic::testing {
namespace {

// Pages are drawn clockwise, the turn is the rest of a circle.
TEST(ImageVorlaneEx, FindsAngleAndSizeOfADrawnPage) {
  for (const int32_t depth : {1, 8, 24}) {
    for (const double degrees : {-30.0, 0.4}) {
      const DrawnPage page{.imageWidth = 600,
                           .bitsPerPixel = depth,
                           .centerX = 300,
                           .degrees = degrees,
                           .text = true};
      SCOPED_TRACE(::testing::PrintToString(std::pair(depth, degrees)));
      double angle = -1;
      ImageRec straight{};
      ASSERT_EQ(ImageVorlaneEx(DrawPage(page).rec(), INTERP_BILINEAR, 0, 0, &angle, &straight), 0);
      EXPECT_NEAR(std::remainder(angle * 57.29577951308232 + degrees, 360), 0, 0.6);
      EXPECT_NEAR(straight.width, page.pageWidth, 8);
      EXPECT_NEAR(straight.height, page.pageHeight, 8);
      EXPECT_EQ(Imgbuf_Check(&straight), 0);
      EXPECT_EQ(Imgbuf_Destory(&straight), 0);
    }
  }
}

TEST(ImageDeskewCrop, MakesANewImageWithEveryMethod) {
  const TestDib dib(DrawPage({.degrees = 2}));
  const uint8_t fill[3] = {0, 0, 0};
  for (const int32_t method : {1, 2, 3}) {
    double angle = 0;
    DibRec out{};
    const DeskewCropParam param = MethodParam(method);
    SCOPED_TRACE(method);
    ASSERT_EQ(ImageDeskewCrop(dib.rec(), INTERP_BILINEAR, 80, 0, 0, fill, &angle, &out, param, 1),
              0);
    EXPECT_NEAR(DibField(out, 4), 280, 8);
    EXPECT_EQ(ImgbufDestory(&out), 0);

    double measured = 0;
    ASSERT_EQ(ImageDeskewAngle(dib.rec(), 80, &measured, param), STATUS_OK);
    EXPECT_EQ(measured, angle);
  }
}

TEST(ImageDeskewCropWithLine, TakesTheAngleOfTheBar) {
  const DrawnPage page{.imageWidth = 1200,
                       .imageHeight = 900,
                       .pageWidth = 1000,
                       .pageHeight = 700,
                       .centerX = 600,
                       .centerY = 450,
                       .degrees = 1.5};
  const TestDib dib(
      DrawBarSheet({.page = page, .barLength = 700, .barThickness = 10, .barY = -200}));
  const uint8_t fill[3] = {255, 255, 255};
  double angle = 0;
  DibRec out{};
  ASSERT_EQ(ImageDeskewCropWithLine(dib.rec(), INTERP_BILINEAR, 100, 0, 0, fill, &angle, &out,
                                    MethodParam(2), 0, 0, 0, 0, 1),
            STATUS_OK);
  EXPECT_NEAR(angle, 1.5, 0.1);
  EXPECT_EQ(ImgbufCheck(&out), 0);
  ImgbufDestory(&out);

  double radians = 0;
  ASSERT_EQ(GetAngleOMR(dib.rec(), 100, 600, 4, 20, &radians), 0);
  EXPECT_EQ(radians * 57.29577951308232, angle);
}

}  // namespace
}  // namespace vorlanepic::testing
