#include "rotate/rotate_image.h"

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "frame/scratch.h"
#include "frame/settings.h"
#include "rotate/regions.h"
#include "support/failing_heap.h"
#include "support/failing_imgbuf.h"
#include "support/page_drawing.h"

namespace vorlanepic {
namespace {

using testing::FailingImgbuf;
using testing::RectangleRegion;
using testing::TestImage;

constexpr uint8_t kFill[3] = {11, 22, 33};

class RotateImageTest : public ::testing::Test {
 protected:
  RotateImageTest() { settings.ImageNum = 1; }
  ~RotateImageTest() override { settings = {}; }
};

// Pixels that differ from all their neighbours.
TestImage Gradient(int32_t width, int32_t height, int32_t bitsPerPixel) {
  TestImage image(width, height, bitsPerPixel);
  for (int32_t y = 0; y < height; ++y) {
    for (int32_t x = 0; x < width; ++x) {
      if (bitsPerPixel == 24) {
        for (int32_t c = 0; c < 3; ++c) {
          image.row(y)[3 * x + c] = static_cast<uint8_t>(7 * x + 31 * y + 50 * c);
        }
      } else {
        image.Set(x, y, static_cast<uint8_t>(7 * x + 31 * y));
      }
    }
  }
  return image;
}

// Bytes of one pixel; at 1 bit 0 or 1.
std::vector<int> PixelAt(const ImageRec& image, int32_t x, int32_t y) {
  const uint8_t* row = image.rows[y];
  if (image.bitsPerPixel == 1) return {(row[x / 8] >> (7 - x % 8)) & 1};
  if (image.bitsPerPixel == 8) return {row[x]};
  return {row[3 * x], row[3 * x + 1], row[3 * x + 2]};
}

std::vector<int> FillAt(int32_t bitsPerPixel, int32_t x) {
  if (bitsPerPixel == 1) return {(kFill[0] >> (7 - x % 8)) & 1};
  if (bitsPerPixel == 8) return {kFill[0]};
  return {kFill[0], kFill[1], kFill[2]};
}

TEST_F(RotateImageTest, RefusesWhatItCannotTurn) {
  struct Case {
    std::string name;
    Turn turn;
    int32_t top;
    int32_t bottom;
  };
  const double angle = 0.1;
  const Case cases[] = {
      {"no width", {angle, 5, 5, 0, 4, 3}, 0, 9},
      {"no height", {angle, 5, 5, 4, -1, 3}, 0, 9},
      {"centre left of the source", {angle, -1, 5, 4, 4, 3}, 0, 9},
      {"centre right of the source", {angle, 20, 5, 4, 4, 3}, 0, 9},
      {"centre above the source", {angle, 5, -1, 4, 4, 3}, 0, 9},
      {"centre below the source", {angle, 5, 10, 4, 4, 3}, 0, 9},
      {"interpolation 0", {angle, 5, 5, 4, 4, 0}, 0, 9},
      {"interpolation 4", {angle, 5, 5, 4, 4, 4}, 0, 9},
      {"region above the source", {angle, 5, 5, 4, 4, 3}, -1, 9},
      {"region below the source", {angle, 5, 5, 4, 4, 3}, 0, 10},
      {"region of one row", {angle, 5, 5, 4, 4, 3}, 5, 5},
  };
  const TestImage source(20, 10, 8);
  for (const Case& c : cases) {
    RowSpans region = RectangleRegion(0, 19, 0, 10);
    region.top = c.top;
    region.bottom = c.bottom;
    ScratchImage target;
    EXPECT_EQ(RotateImage(source.rec(), target.rec(), &region, c.turn, kFill), BAD_ARGUMENT)
        << c.name;
    EXPECT_EQ(target.rec()->pixels, nullptr) << c.name;
  }
}

TEST_F(RotateImageTest, RefusesNullArguments) {
  const TestImage source(20, 10, 8);
  const RowSpans region = RectangleRegion(0, 19, 0, 9);
  const Turn turn{0.0, 5, 5, 4, 4, INTERP_NEAREST};
  ImageRec target{};
  EXPECT_EQ(RotateImage(nullptr, &target, &region, turn, kFill), BAD_ARGUMENT);
  EXPECT_EQ(RotateImage(source.rec(), nullptr, &region, turn, kFill), BAD_ARGUMENT);
  EXPECT_EQ(RotateImage(source.rec(), &target, nullptr, turn, kFill), BAD_ARGUMENT);
  EXPECT_EQ(RotateImage(source.rec(), &target, &region, turn, nullptr), BAD_ARGUMENT);
}

TEST_F(RotateImageTest, MakesNothingForNoImagesOrAnotherDepth) {
  const RowSpans region = RectangleRegion(0, 19, 0, 9);
  const Turn turn{0.0, 5, 5, 4, 4, INTERP_NEAREST};
  for (const int32_t depth : {4, 16, 32}) {
    const TestImage source(20, 10, depth);
    ScratchImage target;
    EXPECT_EQ(RotateImage(source.rec(), target.rec(), &region, turn, kFill), STATUS_OK);
    EXPECT_EQ(target.rec()->pixels, nullptr);
  }
  settings.ImageNum = 0;
  const TestImage source(20, 10, 8);
  ScratchImage target;
  EXPECT_EQ(RotateImage(source.rec(), target.rec(), &region, turn, kFill), STATUS_OK);
  EXPECT_EQ(target.rec()->pixels, nullptr);
}

TEST_F(RotateImageTest, PassesFailuresOnAndLeavesNothing) {
  const TestImage source(20, 10, 8);
  const RowSpans region = RectangleRegion(0, 19, 0, 9);
  const Turn turn{0.0, 5, 5, 4, 4, INTERP_BILINEAR};
  FailingImgbuf images;
  ImageRec target{};
  images.FailCheck(0, 77);
  EXPECT_EQ(RotateImage(source.rec(), &target, &region, turn, kFill), 77);
  images.FailNew(0, 78);
  EXPECT_EQ(RotateImage(source.rec(), &target, &region, turn, kFill), 78);
  int32_t status = STATUS_OK;
  int32_t failures = 0;
  testing::ForEachHeapFailure(
      [&] { status = RotateImage(source.rec(), &target, &region, turn, kFill); },
      [&](int32_t) {
        ++failures;
        EXPECT_EQ(status, OUT_OF_MEMORY);
        EXPECT_EQ(target.pixels, nullptr);
        EXPECT_EQ(images.aliveImages(), 0);
      });
  EXPECT_GE(failures, 3);  // the image and two tables at least
  EXPECT_EQ(status, STATUS_OK);
  EXPECT_EQ(images.aliveImages(), 1);
  Imgbuf_Destory(&target);
}

TEST_F(RotateImageTest, WithoutATurnShiftsTheRegionAndFillsTheRest) {
  for (const int32_t depth : {1, 8, 24}) {
    const TestImage source = Gradient(40, 30, depth);
    const RowSpans region = RectangleRegion(8, 31, 5, 24);
    for (const int32_t interpolation : {INTERP_BICUBIC, INTERP_BILINEAR, INTERP_NEAREST}) {
      for (const auto& [width, height] : {std::pair{36, 28}, {35, 27}, {1, 1}, {1, 40}, {41, 2}}) {
        const int32_t shiftX = 2;
        const int32_t shiftY = 1;
        const Turn turn{
            0.0, (width - 1) / 2 + shiftX, (height - 1) / 2 + shiftY, width, height, interpolation};
        ScratchImage target;
        ASSERT_EQ(RotateImage(source.rec(), target.rec(), &region, turn, kFill), STATUS_OK);
        for (int32_t y = 0; y < height; ++y) {
          for (int32_t x = 0; x < width; ++x) {
            const int32_t sx = x + shiftX;
            const int32_t sy = y + shiftY;
            const bool isInside = sx >= 8 && sx <= 31 && sy >= 5 && sy <= 24;
            ASSERT_EQ(PixelAt(*target.rec(), x, y),
                      isInside ? PixelAt(*source.rec(), sx, sy) : FillAt(depth, x))
                << depth << " bits, " << width << " x " << height << " at " << x << ", " << y;
          }
        }
      }
    }
  }
}

TEST_F(RotateImageTest, PaddingHoldsTheFillBelow24BitsAndZeroAt24) {
  struct Case {
    int32_t depth;
    size_t rowBytes;
    uint8_t padding;
  };
  for (const Case& c : {Case{1, 2, kFill[0]}, Case{8, 13, kFill[0]}, Case{24, 39, 0}}) {
    const TestImage source = Gradient(20, 20, c.depth);
    const RowSpans region = RectangleRegion(0, 19, 0, 19);
    ScratchImage target;
    ASSERT_EQ(RotateImage(source.rec(), target.rec(), &region, {0.3, 9, 9, 13, 6, INTERP_BILINEAR},
                          kFill),
              STATUS_OK);
    for (int32_t y = 0; y < 6; ++y) {
      for (size_t i = c.rowBytes; i < static_cast<size_t>(target.rec()->lineBytes); ++i) {
        EXPECT_EQ(target.rec()->rows[y][i], c.padding) << c.depth;
      }
    }
  }
}

TEST_F(RotateImageTest, AQuarterTurnIsClockwise) {
  const double quarter = std::acos(0.0);
  for (const int32_t depth : {1, 8, 24}) {
    const TestImage source = Gradient(30, 20, depth);
    const RowSpans region = RectangleRegion(0, 29, 0, 19);
    ScratchImage target;
    ASSERT_EQ(RotateImage(source.rec(), target.rec(), &region,
                          {quarter, 15, 9, 19, 27, INTERP_BICUBIC}, kFill),
              STATUS_OK);
    for (int32_t y = 0; y < 27; ++y) {
      for (int32_t x = 0; x < 19; ++x) {
        ASSERT_EQ(PixelAt(*target.rec(), x, y), PixelAt(*source.rec(), 15 + y - 13, 9 - (x - 9)));
      }
    }
  }
}

TEST_F(RotateImageTest, SamplesTenthsOfAPixel) {
  // At 0.1 radians the pixel 3 right of and 2 above the centre has the offsets 2.79 and -2.28:
  // columns 52 and 53 at 7 tenths, rows 47 and 48 at 8 tenths.
  TestImage source(100, 100, 8);
  source.Set(52, 47, 100);
  source.Set(53, 47, 200);
  source.Set(52, 48, 50);
  source.Set(53, 48, 150);
  const RowSpans region = RectangleRegion(0, 99, 0, 99);
  ScratchImage target;
  ASSERT_EQ(
      RotateImage(source.rec(), target.rec(), &region, {0.1, 50, 50, 9, 9, INTERP_BILINEAR}, kFill),
      STATUS_OK);
  // Upper row: 101 * 3 / 10 + 201 * 7 / 10 = 30 + 140; lower: 51 * 3 / 10 + 151 * 7 / 10 = 15 +
  // 105; together 171 * 2 / 10 + 121 * 8 / 10 = 34 + 96.
  EXPECT_EQ(target.rec()->rows[2][7], 130);
}

TEST_F(RotateImageTest, RegionLimitsOutsideTheSourceAreCutToIt) {
  const TestImage source = Gradient(20, 20, 8);
  const RowSpans wide = RectangleRegion(-5, 25, 0, 19);
  const RowSpans whole = RectangleRegion(0, 19, 0, 19);
  const Turn turn{0.5, 10, 10, 40, 40, INTERP_BICUBIC};
  ScratchImage fromWide;
  ScratchImage fromWhole;
  ASSERT_EQ(RotateImage(source.rec(), fromWide.rec(), &wide, turn, kFill), STATUS_OK);
  ASSERT_EQ(RotateImage(source.rec(), fromWhole.rec(), &whole, turn, kFill), STATUS_OK);
  EXPECT_TRUE(testing::SamePixels(*fromWide.rec(), *fromWhole.rec()));
}

TEST_F(RotateImageTest, AnAngleThatIsNoNumberFillsAllButTheCentre) {
  const TestImage source = Gradient(20, 20, 8);
  const RowSpans region = RectangleRegion(0, 19, 0, 19);
  const double none = std::numeric_limits<double>::quiet_NaN();
  ScratchImage target;
  ASSERT_EQ(RotateImage(source.rec(), target.rec(), &region, {none, 10, 10, 3, 3, INTERP_BILINEAR},
                        kFill),
            STATUS_OK);
  EXPECT_EQ(target.rec()->rows[1][1], source.Get(10, 10));
  EXPECT_EQ(target.rec()->rows[0][1], kFill[0]);
  EXPECT_EQ(target.rec()->rows[1][2], kFill[0]);
}

}  // namespace
}  // namespace vorlanepic
