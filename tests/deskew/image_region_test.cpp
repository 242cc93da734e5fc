#include "deskew/image_region.h"

#include "deskew/deskew_fixture.h"
#include "frame/arithmetic.h"
#include "frame/scratch.h"

namespace vorlanepic::testing {

using namespace deskew;
namespace {

// The rectangle of a size; sums wrap, so that absurd sizes can be asked for.
frame::PixelRect Rect(int32_t left, int32_t top, int32_t width, int32_t height) {
  return {left, frame::WrapAdd(left, width) - 1, top, frame::WrapAdd(top, height) - 1};
}

// Bit (or byte) i of a row.
int32_t BitAt(const uint8_t* row, int32_t i) { return row[i / 8] >> (7 - i % 8) & 1; }

using CopyImageRegionTest = DeskewTest;

TEST_F(CopyImageRegionTest, CutsAtEveryBit) {
  for (const int32_t depth : {1, 8, 24}) {
    const TestImage image = DrawNoise(45, 4, depth, 11);
    for (int32_t left = 0; left <= 45; ++left) {
      for (int32_t width = 1; left + width <= 45; ++width) {
        frame::ScratchImage cut;
        ASSERT_EQ(CopyImageRegion(image.rec(), cut.rec(), Rect(left, 1, width, 3)), STATUS_OK);
        ASSERT_EQ(cut.rec()->width, width);
        ASSERT_EQ(cut.rec()->height, 3);
        ASSERT_EQ(cut.rec()->bitsPerPixel, depth);
        for (int32_t y = 0; y < 3; ++y) {
          const int32_t bits = width * depth;
          for (int32_t i = 0; i < (bits + 7) / 8 * 8; ++i) {
            const int32_t expected = i < bits ? BitAt(image.row(y + 1), left * depth + i) : 0;
            ASSERT_EQ(BitAt(cut.rec()->rows[y], i), expected)
                << depth << " bits, " << width << " pixels from " << left << ", bit " << i;
          }
        }
      }
    }
  }
  EXPECT_EQ(imgbuf_.aliveImages(), 0);
}

TEST_F(CopyImageRegionTest, RefusesWhatLiesOutsideAndPassesTheImageLibrarysCodeOn) {
  const TestImage image(10, 8, 8);
  ImageRec out{};
  for (const frame::PixelRect& region :
       {Rect(-1, 0, 2, 2), Rect(0, -1, 2, 2), Rect(0, 0, 2, -1), Rect(1, 0, 10, 8),
        Rect(0, 1, 10, 8), Rect(5, 5, INT32_MAX, 1), Rect(5, 5, 1, INT32_MAX), Rect(3, 3, 0, 2)}) {
    EXPECT_EQ(CopyImageRegion(image.rec(), &out, region), BAD_ARGUMENT);
  }
  imgbuf_.FailNew(0, 77);
  EXPECT_EQ(CopyImageRegion(image.rec(), &out, Rect(0, 0, 2, 2)), 77);
  EXPECT_EQ(out.pixels, nullptr);
  EXPECT_EQ(imgbuf_.aliveImages(), 0);
}

class RotateImageRegionTest : public DeskewTest {
 protected:
  int32_t Rotate(const TestImage& image, const frame::PixelRect& region, double degrees,
                 int32_t interpolation = INTERP_NEAREST) {
    turned_.Release();
    return RotateImageRegion(image.rec(), turned_.rec(), kFill, region, degrees, interpolation);
  }

  static constexpr uint8_t kFill[3] = {7, 7, 7};
  frame::ScratchImage turned_;
};

TEST_F(RotateImageRegionTest, OfOddSizeAtNoAngleIsTheRegionItself) {
  for (const int32_t depth : {1, 8, 24}) {
    const TestImage image = DrawNoise(40, 30, depth, 11);
    // The last one ends with the image.
    for (const frame::PixelRect& region :
         {Rect(3, 4, 21, 13), Rect(0, 0, 39, 29), Rect(11, 1, 29, 29)}) {
      frame::ScratchImage cut;
      ASSERT_EQ(Rotate(image, region, 0.0, INTERP_BILINEAR), STATUS_OK);
      ASSERT_EQ(CopyImageRegion(image.rec(), cut.rec(), region), STATUS_OK);
      EXPECT_TRUE(SamePixels(*turned_.rec(), *cut.rec())) << depth;
    }
  }
}

// The bounding box of the turned rectangle, rounded: 100 x 50 by 30 degrees is
// 100 x 0.8660 + 50 x 0.5 = 111.6 wide and 100 x 0.5 + 50 x 0.8660 = 93.3 high.
TEST_F(RotateImageRegionTest, HoldsTheTurnedRectangle) {
  const TestImage image(120, 80, 8);
  for (const double degrees : {30.0, 330.0, 150.0, -30.0, 90.0}) {
    ASSERT_EQ(Rotate(image, Rect(10, 20, 100, 50), degrees), STATUS_OK);
    EXPECT_EQ(turned_.rec()->width, degrees == 90 ? 50 : 112) << degrees;
    EXPECT_EQ(turned_.rec()->height, degrees == 90 ? 100 : 93) << degrees;
  }
}

// About the centre (2 + 4 div 2, 1 + 4 div 2) = (4, 3), which goes to pixel (1, 1) of the 4 x 4
// output: at no angle that is one column and one row on. Column 6, one beyond the region, takes
// part; row 5 does not.
TEST_F(RotateImageRegionTest, TurnsAboutTheRegionsCentre) {
  TestImage image(9, 8, 8);
  for (int32_t y = 0; y < 8; ++y) {
    for (int32_t x = 0; x < 9; ++x) image.Set(x, y, static_cast<uint8_t>(100 + 10 * y + x));
  }
  ASSERT_EQ(Rotate(image, Rect(2, 1, 4, 4), 0.0), STATUS_OK);
  EXPECT_EQ(turned_.rec()->rows[0][0], 123);
  EXPECT_EQ(turned_.rec()->rows[2][3], 146);
  EXPECT_EQ(turned_.rec()->rows[3][0], 7);
}

TEST_F(RotateImageRegionTest, RefusesWhatItCannotTurn) {
  const TestImage image(20, 20, 8);
  for (const frame::PixelRect& region :
       {Rect(0, 5, 10, 1), Rect(0, 0, 0, 10), Rect(-1, 0, 10, 10), Rect(0, -1, 10, 10),
        Rect(0, 15, 10, 6), Rect(25, 0, 10, 10), Rect(0, 5, 10, INT32_MAX),
        Rect(5, 0, INT32_MAX, 10)}) {
    EXPECT_EQ(Rotate(image, region, 1.0), BAD_ARGUMENT);
  }
}

}  // namespace
}  // namespace vorlanepic::testing
