// Whole roads through the shared libraries.
#include <cmath>
#include <cstring>
#include <string>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "support/page_drawing.h"
#include "vorlanepic/vorlanepic.h"

namespace vorlanepic::testing {
namespace {

constexpr double kTwoPi = 6.283185307179586;

// The drawn pages are turned clockwise, so the turn that makes them upright is the rest of a
// circle.
double TurnedDegrees(double radians) {
  const double degrees = (kTwoPi - radians) * 360 / kTwoPi;
  return degrees > 180 ? degrees - 360 : degrees;
}

using DepthAndAngle = std::tuple<int32_t, double>;
class StraightenTest : public ::testing::TestWithParam<DepthAndAngle> {};

TEST_P(StraightenTest, FindsAngleAndSizeOfADrawnPage) {
  const auto [bitsPerPixel, degrees] = GetParam();
  DrawnPage page;
  page.imageWidth = 600;
  page.imageHeight = 640;
  page.centerX = 300;
  page.centerY = 320;
  page.bitsPerPixel = bitsPerPixel;
  page.degrees = degrees;
  page.text = true;
  const TestImage scan = DrawPage(page);

  double angle = -1;
  ImageRec straight{};
  ASSERT_EQ(ImageVorlaneEx(scan.rec(), INTERP_BILINEAR, 0, 0, &angle, &straight), STATUS_OK);
  // At 1 bit the border points lie on a coarser grid.
  EXPECT_NEAR(TurnedDegrees(angle), degrees, bitsPerPixel == 1 ? 0.6 : 0.3);
  EXPECT_NEAR(straight.width, page.pageWidth, 8);
  EXPECT_NEAR(straight.height, page.pageHeight, 8);
  EXPECT_EQ(straight.bitsPerPixel, bitsPerPixel);
  EXPECT_EQ(Imgbuf_Check(&straight), 0);
  EXPECT_EQ(Imgbuf_Destory(&straight), 0);
}

INSTANTIATE_TEST_SUITE_P(Pages, StraightenTest,
                         ::testing::Combine(::testing::Values(1, 8, 24),
                                            ::testing::Values(-30.0, -7.0, -1.0, 0.0, 0.4, 2.0,
                                                              11.0, 40.0)));

TEST(VorlanePic, WritesThePageOverTheCallersBuffer) {
  DrawnPage page;
  page.degrees = 3;
  const TestImage scan = DrawPage(page);
  std::vector<uint8_t> buffer(static_cast<size_t>(scan.rec()->imageBytes) * 2);
  std::memcpy(buffer.data(), scan.rec()->pixels, static_cast<size_t>(scan.rec()->imageBytes));
  int32_t width = page.imageWidth;
  int32_t height = page.imageHeight;
  ASSERT_EQ(VorlanePic(buffer.data(), &width, &height, 8, INTERP_NEAREST, 0), 1);

  double angle = 0;
  ImageRec same{};
  ASSERT_EQ(ImageVorlaneEx(scan.rec(), INTERP_NEAREST, 0, 0, &angle, &same), STATUS_OK);
  EXPECT_EQ(width, same.width);
  EXPECT_EQ(height, same.height);
  // The two services differ in the filling outside the page only, and the middle lies inside.
  const ptrdiff_t middle = ptrdiff_t{same.height / 2} * same.lineBytes;
  EXPECT_EQ(std::memcmp(buffer.data() + middle + 20, same.pixels + middle + 20,
                        static_cast<size_t>(same.width) - 40),
            0);
  Imgbuf_Destory(&same);
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
  DrawnPage page;
  page.imageWidth = 900;
  page.imageHeight = 1000;
  page.pageWidth = 700;
  page.pageHeight = 800;
  page.centerX = 450;
  page.centerY = 500;
  page.degrees = 2;
  page.background = 10;
  DibRec dib = ToDib(DrawPage(page));
  const uint8_t fill[3] = {0, 0, 0};
  for (const int32_t method : {1, 2, 3}) {
    double angle = 0;
    DibRec out{};
    ASSERT_EQ(ImageDeskewCrop(&dib, INTERP_BILINEAR, 80, 0, 0, fill, &angle, &out,
                              MethodParam(method), 1),
              STATUS_OK)
        << "method " << method;
    int32_t width = 0;
    std::memcpy(&width, out.infoHeader + 4, 4);
    EXPECT_NEAR(width, page.pageWidth, 8) << "method " << method;
    EXPECT_EQ(ImgbufDestory(&out), 0);

    double measured = 0;
    ASSERT_EQ(ImageDeskewAngle(&dib, 80, &measured, MethodParam(method)), STATUS_OK);
    EXPECT_EQ(measured, angle) << "method " << method;
  }
  ImgbufDestory(&dib);
}

TEST(ImageDeskewCropWithLine, TakesTheAngleOfTheBar) {
  DrawnBarSheet sheet;
  sheet.page.imageWidth = 1200;
  sheet.page.imageHeight = 900;
  sheet.page.pageWidth = 1000;
  sheet.page.pageHeight = 700;
  sheet.page.centerX = 600;
  sheet.page.centerY = 450;
  sheet.page.degrees = 1.5;
  sheet.barLength = 700;
  sheet.barThickness = 10;
  sheet.barY = -200;
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

TEST(LabelFunctions, SortBlocksFromLeftToRight) {
  // Centres at x = 40, 10 and 25, met in this order.
  std::vector<uint8_t> image(50 * 9);
  for (const auto& [x, y] : {std::pair{40, 1}, std::pair{10, 4}, std::pair{25, 7}}) {
    image[static_cast<size_t>(y * 50 + x)] = 1;
  }
  BlockSetRec set{};
  ASSERT_EQ(bw_label_center(image.data(), 9, 50, &set), 1);
  ASSERT_EQ(set.count, 3);
  EXPECT_EQ(set.blocks[0].centerX, 10);
  EXPECT_EQ(set.blocks[1].centerX, 25);
  EXPECT_EQ(set.blocks[2].centerX, 40);
  EXPECT_EQ(set.blocks[0].root, 1);
  EXPECT_EQ(set.blocks[2].root, 0);
  EXPECT_EQ(DestoryBlockSetRec(&set), 0);
  EXPECT_EQ(set.blocks, nullptr);
}

}  // namespace
}  // namespace vorlanepic::testing
