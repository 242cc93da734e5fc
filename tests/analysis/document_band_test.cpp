#include <gtest/gtest.h>

#include "analysis/border_drawing.h"
#include "analysis/border_scan.h"

namespace vorlanepic::testing {
namespace {

// From above rows 0, 8, 16 ... are sampled, from below height - 1, height - 9, ...
TEST_F(AnalysisTest, BandReachesNineRowsBeyondTheSampledRowsOfThePage) {
  // Light pixels from column 0 on in rows first..last of an image 200 wide.
  struct Case {
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
  const Case cases[] = {
      {"near the frame", 8, 100, 3, 97, 120, 1, 0, 99},
      {"just long enough", 24, 100, 20, 70, 86, 1, 15, 76},
      {"one pixel short", 24, 100, 20, 70, 85, 1, -1, 0},
      {"one pixel for other methods", 8, 100, 20, 70, 1, 3, -1, 0},
      {"bits", 1, 100, 20, 70, 86, 1, 15, 76},
      {"between sampled rows", 8, 100, 17, 23, 120, 1, -1, 0},
      {"missed from below", 8, 12, 0, 2, 120, 1, -1, 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    TestImage image(200, c.height, c.bitsPerPixel);
    FillRectangle(&image, 0, c.first, c.light - 1, c.last, 201);
    settings.BorderMethod = c.method;
    ScanBand band{};
    EXPECT_EQ(FindBand(image.rec(), &band, 200), c.top < 0 ? BORDER_NOT_FOUND : STATUS_OK);
    if (c.top < 0) continue;
    EXPECT_EQ(band.left, 0);
    EXPECT_EQ(band.right, 199);
    EXPECT_EQ(band.top, c.top);
    EXPECT_EQ(band.bottom, c.bottom);
  }
}

TEST_F(AnalysisTest, BandCountsOnlyWhatIsLighterThanTheThresholdAndNoPadding) {
  TestImage image(100, 10, 8);
  ScanBand band{};
  image.Fill(200);
  EXPECT_EQ(FindBand(image.rec(), &band, 200), BORDER_NOT_FOUND);
  image.Fill(255);
  EXPECT_EQ(FindBand(image.rec(), &band, 254), STATUS_OK);
  EXPECT_EQ(FindBand(image.rec(), &band, 255), BORDER_NOT_FOUND);
  settings.BorderMethod = 3;
  TestImage bits(9, 1, 1);
  bits.row(0)[1] = 0xFF;  // pixel 8 and padding
  EXPECT_EQ(FindBand(bits.rec(), &band, 0), BORDER_NOT_FOUND);
}

TEST_F(AnalysisTest, BandRefusesWhatItCannotRead) {
  ScanBand band{};
  TestImage image(9, 9, 4);
  EXPECT_EQ(FindBand(nullptr, &band, 0), BAD_ARGUMENT);
  EXPECT_EQ(FindBand(image.rec(), nullptr, 0), BAD_ARGUMENT);
  EXPECT_EQ(FindBand(image.rec(), &band, 0), BAD_ARGUMENT);
}

}  // namespace
}  // namespace vorlanepic::testing
