#include "api/service_fixture.h"
#include "support/dib_image.h"
#include "support/failing_heap.h"
#include "support/profile_file.h"

namespace vorlanepic::testing {

using namespace deskew;
namespace {

// A sheet of 700 x 500 pixels with a bar of 620 x 8 across it.
DrawnBarSheet Sheet(double degrees, int32_t depth = 8) {
  return {.page = {.imageWidth = 900,
                   .imageHeight = 640,
                   .bitsPerPixel = depth,
                   .pageWidth = 700,
                   .pageHeight = 500,
                   .centerX = 450,
                   .centerY = 320,
                   .degrees = degrees},
          .barLength = 620,
          .barThickness = 8,
          .barY = -150};
}

class ImageDeskewCropWithLineTest : public ServiceTest {
 protected:
  int32_t Run(const DibRec* images, DibRec* out, const DeskewCropParam& param = kParam,
              int32_t imageNum = 1) {
    return ImageDeskewCropWithLine(images, INTERP_BILINEAR, 120, 0, 0, kBlack, &angle_, out, param,
                                   0, 0, 0, 0, imageNum);
  }
};

// The angle is taken top row first and the turn is made in memory order, bottom row first, where
// the sheet leans the other way: the turn that the bar asks for makes it upright.
TEST_F(ImageDeskewCropWithLineTest, StraightensAFormByItsBar) {
  for (const int32_t depth : {1, 8, 24}) {
    for (const double degrees : {-3.0, 2.0}) {
      const TestDib dib(DrawBarSheet(Sheet(degrees, depth)));
      DibRec out{};
      ASSERT_EQ(Run(dib.rec(), &out), STATUS_OK) << depth << " bits, " << degrees;
      EXPECT_NEAR(angle_, degrees, 0.15);
      EXPECT_NEAR(DibField(out, 4), 700, 5);
      EXPECT_NEAR(DibField(out, 8), 500, 5);
      ImgbufDestory(&out);
    }
  }
  EXPECT_EQ(imgbuf_.aliveImages(), 0);
}

// 7874 pixels per metre are trunc(199999.6) div 1000 = 199 dots per inch, so that 600 becomes 597
// and 20 becomes 19; without a resolution the limits stand. A bar of 598 x 8 is long enough for the
// first only; lengths are those of the bounding box's diagonal.
TEST_F(ImageDeskewCropWithLineTest, ScalesTheBarToTheResolution) {
  struct Case {
    int32_t pixelsPerMetre;
    double length;
    double thickness;
    int32_t status;
  };
  for (const Case& c :
       {Case{0, 598, 8, -1}, Case{7874, 598, 8, STATUS_OK}, Case{7874, 594, 8, -1},
        Case{0, 602, 8, STATUS_OK}, Case{0, 620, 20, STATUS_OK}, Case{7874, 620, 20, -1},
        // Below 1 dot per inch every limit falls back: 300, 4 and 20.
        Case{-7874, 310, 8, STATUS_OK}, Case{-7874, 280, 8, -1},
        // At 1 the length is 3, and the others fall back.
        Case{40, 280, 8, STATUS_OK}, Case{40, 280, 22, -1}}) {
    DrawnBarSheet sheet = Sheet(0);
    // Between pixels, so that an even number of them is covered.
    sheet.barX = 0.5;
    sheet.barY = -150.5;
    sheet.barLength = c.length - 0.5;
    sheet.barThickness = c.thickness - 0.5;
    const TestDib dib(DrawBarSheet(sheet), c.pixelsPerMetre);
    DibRec out{};
    EXPECT_EQ(Run(dib.rec(), &out), c.status)
        << c.pixelsPerMetre << " per metre, bar of " << c.length << " x " << c.thickness;
    if (out.bits != nullptr) ImgbufDestory(&out);
  }
}

TEST_F(ImageDeskewCropWithLineTest, TakesItsLimitsFromTheProfile) {
  DrawnBarSheet sheet = Sheet(0);
  sheet.barLength = 520;
  const TestDib dib(DrawBarSheet(sheet));
  const ProfileOnDisk longer("[ImageDeskewLine]\nLineMixLength=540\n");
  DeskewCropParam param = kParam;
  param.useProfile = 1;
  param.profilePath = longer.path();
  DibRec out{};
  EXPECT_EQ(Run(dib.rec(), &out, param), -1);
  param.profilePath = "no/such/file.ini";  // 500 by default
  api::settings.CropPixelFlag = 1;
  EXPECT_EQ(Run(dib.rec(), &out, param), STATUS_OK);
  ImgbufDestory(&out);
  EXPECT_EQ(api::settings.CropPixelNum, 200);
  EXPECT_EQ(api::settings.CropPixelFlag, 1);
  EXPECT_EQ(api::settings.ImageNum, 1);
}

TEST_F(ImageDeskewCropWithLineTest, TurnsASetByTheFirstOnesBar) {
  const TestDib first(DrawBarSheet(Sheet(2)));
  const TestDib second(DrawPage(Sheet(2).page));
  const DibRec images[2] = {*first.rec(), *second.rec()};
  DibRec out[2] = {};
  ASSERT_EQ(Run(images, out, kParam, 2), STATUS_OK);
  EXPECT_EQ(DibField(out[0], 4), DibField(out[1], 4));
  EXPECT_EQ(DibField(out[0], 8), DibField(out[1], 8));
  for (DibRec& image : out) ImgbufDestory(&image);
  EXPECT_EQ(imgbuf_.aliveImages(), 0);
}

TEST_F(ImageDeskewCropWithLineTest, StopsAfterTheAngleWhenToldTo) {
  const TestDib dib(DrawBarSheet(Sheet(2)));
  api::settings.AngleOnlyFlag = 1;
  api::settings.ImageNum = 5;
  EXPECT_EQ(Run(dib.rec(), nullptr), STATUS_OK);
  EXPECT_NEAR(angle_, 2.0, 0.1);
  EXPECT_EQ(imgbuf_.newCalls(), 0);
  EXPECT_EQ(api::settings.ImageNum, 5);
}

TEST_F(ImageDeskewCropWithLineTest, ReportsWhatFailed) {
  const TestDib dib(DrawBarSheet(Sheet(2)));
  DibRec out{};
  EXPECT_EQ(Run(dib.rec(), nullptr), BAD_ARGUMENT);
  EXPECT_EQ(Run(dib.rec(), &out, kParam, INT32_MAX), OUT_OF_MEMORY);
  const TestDib plain(DrawPage({}));
  EXPECT_EQ(Run(plain.rec(), &out), -1);
  imgbuf_.FailDibCheck(0, 51);
  EXPECT_EQ(Run(dib.rec(), &out), 51);
  imgbuf_.FailNew(0, 52);
  EXPECT_EQ(Run(dib.rec(), &out), 52);
  imgbuf_.FailDibNew(0, 53);
  EXPECT_EQ(Run(dib.rec(), &out), 53);
  EXPECT_EQ(out.bits, nullptr);
  // Unlike the border vote, it does not mind an image that could not be released.
  imgbuf_.FailDestory(0, 54);
  EXPECT_EQ(Run(dib.rec(), &out), STATUS_OK);
  ImgbufDestory(&out);
  EXPECT_EQ(imgbuf_.aliveImages(), 0);
}

// The bar search reports exhausted memory as its own failure, -1, and works on with the blocks that
// it has when the marking fails.
TEST_F(ImageDeskewCropWithLineTest, ReleasesEverythingWhenTheHeapIsExhausted) {
  const TestDib dib(DrawBarSheet(Sheet(2)));
  DibRec out{};
  int32_t status = STATUS_OK;
  int32_t exhausted = 0;
  ForEachHeapFailure(
      [&] {
        status = Run(dib.rec(), &out);
        if (out.bits != nullptr) ImgbufDestory(&out);
      },
      [&](int32_t) {
        EXPECT_TRUE(status == OUT_OF_MEMORY || status == -1 || status == STATUS_OK) << status;
        if (status == OUT_OF_MEMORY) ++exhausted;
        EXPECT_EQ(imgbuf_.aliveImages(), 0);
      });
  EXPECT_GT(exhausted, 4);
  EXPECT_EQ(status, STATUS_OK);
}

}  // namespace
}  // namespace vorlanepic::testing
