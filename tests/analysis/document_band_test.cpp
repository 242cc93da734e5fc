#include <string>

#include <gtest/gtest.h>

#include "analysis/border_drawing.h"
#include "analysis/border_scan.h"
#include "support/failing_imgbuf.h"

namespace vorlanepic {
namespace {

using testing::AnalysisTest;
using testing::FillRectangle;
using testing::TestImage;

// Light pixels from column 0 on in rows first..last of an image 200 wide.
struct BandCase {
  const char* name;
  int32_t bitsPerPixel;
  int32_t height;
  int32_t first;
  int32_t last;
  int32_t light;
  int32_t method;
  int32_t top;  // -1: no band
  int32_t bottom;
};

class FindBandTest : public AnalysisTest, public ::testing::WithParamInterface<BandCase> {};

TEST_P(FindBandTest, ReachesNineRowsBeyondTheSampledRowsOfThePage) {
  const BandCase& page = GetParam();
  TestImage image(200, page.height, page.bitsPerPixel);
  FillRectangle(&image, 0, page.first, page.light - 1, page.last, 201);
  settings.BorderMethod = page.method;
  ScanBand band{};
  const int32_t status = FindBand(image.rec(), &band, 200);
  if (page.top < 0) {
    EXPECT_EQ(status, BORDER_NOT_FOUND);
    return;
  }
  EXPECT_EQ(status, STATUS_OK);
  EXPECT_EQ(band.left, 0);
  EXPECT_EQ(band.right, 199);
  EXPECT_EQ(band.top, page.top);
  EXPECT_EQ(band.bottom, page.bottom);
}

// From above rows 0, 8, 16 ... are sampled, from below height - 1, height - 9, ...
INSTANTIATE_TEST_SUITE_P(
    Pages, FindBandTest,
    ::testing::Values(BandCase{"Inside", 8, 100, 20, 70, 120, 1, 15, 76},
                      BandCase{"NearTheFrame", 8, 100, 3, 97, 120, 1, 0, 99},
                      BandCase{"JustLongEnough", 24, 100, 20, 70, 86, 1, 15, 76},
                      BandCase{"OnePixelShort", 24, 100, 20, 70, 85, 1, -1, 0},
                      BandCase{"TwoPixelsForOtherMethods", 8, 100, 20, 70, 2, 3, 15, 76},
                      BandCase{"OnePixelForOtherMethods", 8, 100, 20, 70, 1, 3, -1, 0},
                      BandCase{"Bits", 1, 100, 20, 70, 86, 1, 15, 76},
                      BandCase{"TooFewBits", 1, 100, 20, 70, 85, 1, -1, 0},
                      BandCase{"BetweenSampledRows", 8, 100, 17, 23, 120, 1, -1, 0},
                      BandCase{"MissedFromBelow", 8, 12, 0, 2, 120, 1, -1, 0},
                      BandCase{"SingleRow", 8, 1, 0, 0, 120, 1, 0, 0}),
    [](const auto& page) { return std::string(page.param.name); });

TEST_F(AnalysisTest, BandCountsOnlyWhatIsLighterThanTheThreshold) {
  TestImage image(100, 10, 8);
  image.Fill(200);
  ScanBand band{};
  EXPECT_EQ(FindBand(image.rec(), &band, 200), BORDER_NOT_FOUND);
  image.Fill(255);
  EXPECT_EQ(FindBand(image.rec(), &band, 254), STATUS_OK);
  EXPECT_EQ(FindBand(image.rec(), &band, 255), BORDER_NOT_FOUND);
}

TEST_F(AnalysisTest, BandCountsNoPaddingBits) {
  settings.BorderMethod = 3;
  TestImage image(9, 1, 1);
  image.row(0)[1] = 0xFF;  // pixel 8 and padding
  ScanBand band{};
  EXPECT_EQ(FindBand(image.rec(), &band, 0), BORDER_NOT_FOUND);
}

TEST_F(AnalysisTest, BandRefusesWhatItCannotRead) {
  ScanBand band{};
  TestImage image(9, 9, 4);
  EXPECT_EQ(FindBand(nullptr, &band, 0), BAD_ARGUMENT);
  EXPECT_EQ(FindBand(image.rec(), nullptr, 0), BAD_ARGUMENT);
  EXPECT_EQ(FindBand(image.rec(), &band, 0), BAD_ARGUMENT);
  testing::FailingImgbuf imgbuf;
  imgbuf.FailCheck(0, 77);
  EXPECT_EQ(FindBand(image.rec(), &band, 0), 77);
}

}  // namespace
}  // namespace vorlanepic
