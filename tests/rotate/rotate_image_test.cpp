#include "rotate/rotate_image.h"

#include <cmath>
#include <utility>
#include <vector>

#include "frame/scratch.h"
#include "rotate/rotate_fixture.h"
#include "support/failing_heap.h"
#include "support/failing_imgbuf.h"
#include "support/page_drawing.h"

namespace vorlanepic::testing {

using namespace rotate;
namespace {

constexpr uint8_t kFill[3] = {11, 22, 33};

class RotateImageTest : public ::testing::Test {
 protected:
  // Turns into target_, afresh.
  int32_t Rotate(const TestImage& source, const RowSpans& region, const Turn& turn) {
    target_.Release();
    return RotateImage(source.rec(), target_.rec(), &region, turn, kFill);
  }

  const TestImage source_{20, 10, 8};
  const RowSpans region_ = RectangleRegion(0, 19, 0, 9);
  frame::ScratchImage target_;
};

// Pixels that differ from all their neighbours.
TestImage Gradient(int32_t width, int32_t height, int32_t bitsPerPixel) {
  TestImage image(width, height, bitsPerPixel);
  for (int32_t y = 0; y < height; ++y) {
    for (int32_t x = 0; x < width; ++x) {
      image.Set(x, y, static_cast<uint8_t>(7 * x + 31 * y));
      if (bitsPerPixel == 24) image.row(y)[3 * x + 1] ^= 0x55;  // three bytes that differ
      if (bitsPerPixel == 24) image.row(y)[3 * x + 2] ^= 0xAA;
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
  const Turn turns[] = {{0.1, 5, 5, 0, 4, 3},  {0.1, 5, 5, 4, -1, 3}, {0.1, -1, 5, 4, 4, 3},
                        {0.1, 20, 5, 4, 4, 3}, {0.1, 5, -1, 4, 4, 3}, {0.1, 5, 10, 4, 4, 3},
                        {0.1, 5, 5, 4, 4, 0},  {0.1, 5, 5, 4, 4, 4}};
  for (const Turn& turn : turns) {
    EXPECT_EQ(Rotate(source_, region_, turn), BAD_ARGUMENT) << "turn " << &turn - turns;
    EXPECT_EQ(target_.rec()->pixels, nullptr);
  }
  const Turn turn{0.1, 5, 5, 4, 4, INTERP_NEAREST};
  for (const auto& [top, bottom] : {std::pair{-1, 9}, {0, 10}, {5, 5}}) {
    RowSpans region = RectangleRegion(0, 19, 0, 10);
    region.top = top;
    region.bottom = bottom;
    EXPECT_EQ(Rotate(source_, region, turn), BAD_ARGUMENT) << top << ".." << bottom;
  }
  ImageRec target{};
  EXPECT_EQ(RotateImage(nullptr, &target, &region_, turn, kFill), BAD_ARGUMENT);
  EXPECT_EQ(RotateImage(source_.rec(), nullptr, &region_, turn, kFill), BAD_ARGUMENT);
  EXPECT_EQ(RotateImage(source_.rec(), &target, nullptr, turn, kFill), BAD_ARGUMENT);
  EXPECT_EQ(RotateImage(source_.rec(), &target, &region_, turn, nullptr), BAD_ARGUMENT);
}

TEST_F(RotateImageTest, MakesNothingOfAnotherDepth) {
  const Turn turn{0.0, 5, 5, 4, 4, INTERP_NEAREST};
  for (const int32_t depth : {4, 16, 32}) {
    EXPECT_EQ(Rotate(TestImage(20, 10, depth), region_, turn), STATUS_OK);
    EXPECT_EQ(target_.rec()->pixels, nullptr);
  }
}

TEST_F(RotateImageTest, PassesFailuresOnAndLeavesNothing) {
  const Turn turn{0.0, 5, 5, 4, 4, INTERP_BILINEAR};
  FailingImgbuf images;
  images.FailCheck(0, 77);
  EXPECT_EQ(Rotate(source_, region_, turn), 77);
  images.FailNew(0, 78);
  EXPECT_EQ(Rotate(source_, region_, turn), 78);
  int32_t status = STATUS_OK;
  int32_t failures = 0;
  const auto check = [&](int32_t) {
    ++failures;
    EXPECT_EQ(status, OUT_OF_MEMORY);
    EXPECT_EQ(target_.rec()->pixels, nullptr);
    EXPECT_EQ(images.aliveImages(), 0);
  };
  ForEachHeapFailure([&] { status = Rotate(source_, region_, turn); }, check);
  EXPECT_GE(failures, 3);  // the image and two tables at least
  EXPECT_EQ(status, STATUS_OK);
}

TEST_F(RotateImageTest, WithoutATurnShiftsTheRegionAndFillsTheRest) {
  for (const int32_t depth : {1, 8, 24}) {
    const TestImage source = Gradient(40, 30, depth);
    const RowSpans region = RectangleRegion(8, 31, 5, 24);
    for (const int32_t interpolation : {INTERP_BICUBIC, INTERP_BILINEAR, INTERP_NEAREST}) {
      for (const auto& [width, height] : {std::pair{36, 28}, {35, 27}, {1, 1}, {1, 40}, {41, 2}}) {
        const int32_t centerX = (width - 1) / 2 + 2;
        const int32_t centerY = (height - 1) / 2 + 1;
        ASSERT_EQ(Rotate(source, region, {0.0, centerX, centerY, width, height, interpolation}), 0);
        for (int32_t y = 0; y < height; ++y) {
          for (int32_t x = 0; x < width; ++x) {
            const int32_t sx = x + 2;
            const int32_t sy = y + 1;
            const bool isInside = sx >= 8 && sx <= 31 && sy >= 5 && sy <= 24;
            ASSERT_EQ(PixelAt(*target_.rec(), x, y),
                      isInside ? PixelAt(*source.rec(), sx, sy) : FillAt(depth, x))
                << depth << " bits, " << width << " x " << height << " at " << x << ", " << y;
          }
        }
      }
    }
  }
}

// The output reaches 5 columns beyond the source on either side; so does the region, in vain. The
// padding of its rows holds the fill, but zero at 24 bits.
TEST_F(RotateImageTest, AQuarterTurnIsClockwise) {
  const RowSpans region = RectangleRegion(-9, 39, 0, 19);
  for (const int32_t depth : {1, 8, 24}) {
    const TestImage source = Gradient(30, 20, depth);
    ASSERT_EQ(Rotate(source, region, {std::acos(0.0), 15, 9, 19, 41, INTERP_BICUBIC}), STATUS_OK);
    for (int32_t y = 0; y < 41; ++y) {
      for (int32_t x = 0; x < 19; ++x) {
        const bool isInside = y >= 5 && y < 35;
        ASSERT_EQ(PixelAt(*target_.rec(), x, y),
                  isInside ? PixelAt(*source.rec(), y - 5, 18 - x) : FillAt(depth, x));
      }
      EXPECT_EQ(target_.rec()->rows[y][target_.rec()->lineBytes - 1], depth == 24 ? 0 : kFill[0]);
    }
  }
}

TEST_F(RotateImageTest, QuarterTurnsOnTopOfAnAngleMoveFinishedPixels) {
  for (const int32_t depth : {1, 8, 24}) {
    const TestImage source = Gradient(60, 50, depth);
    const RowSpans region = RectangleRegion(0, 59, 0, 49);
    for (const int32_t interpolation : {INTERP_BICUBIC, INTERP_BILINEAR, INTERP_NEAREST}) {
      ASSERT_EQ(Rotate(source, region, {-0.07, 29, 24, 41, 41, interpolation}), STATUS_OK);
      const frame::ScratchImage straight = std::move(target_);
      for (int32_t quarters = 1; quarters < 4; ++quarters) {
        const Turn turn{-0.07, 29, 24, 41, 41, interpolation, quarters};
        ASSERT_EQ(Rotate(source, region, turn), STATUS_OK);
        for (int32_t i = 0; i < 41 * 41; ++i) {
          int32_t x = i % 41;
          int32_t y = i / 41;
          const std::vector<int> moved = PixelAt(*target_.rec(), x, y);
          for (int32_t k = 0; k < quarters; ++k) x = std::exchange(y, 40 - x);
          ASSERT_EQ(moved, PixelAt(*straight.rec(), x, y)) << depth << " bits, " << quarters;
        }
      }
    }
  }
}

// At 0.1 radians the pixel 3 right of and 2 above the centre has the offsets 2.79 and -2.28:
// columns 52 and 53 at 7 tenths, rows 47 and 48 at 8 tenths. Upper row: 101 * 3 / 10 + 201 * 7 / 10
// = 30 + 140; lower: 51 * 3 / 10 + 151 * 7 / 10 = 15 + 105; together 171 * 2 / 10 + 121 * 8 / 10 =
// 34 + 96.
TEST_F(RotateImageTest, SamplesTenthsOfAPixel) {
  TestImage source(100, 100, 8);
  source.Set(52, 47, 100);
  source.Set(53, 47, 200);
  source.Set(52, 48, 50);
  source.Set(53, 48, 150);
  const RowSpans region = RectangleRegion(0, 99, 0, 99);
  ASSERT_EQ(Rotate(source, region, {0.1, 50, 50, 9, 9, INTERP_BILINEAR}), STATUS_OK);
  EXPECT_EQ(target_.rec()->rows[2][7], 130);
}

TEST_F(RotateImageTest, AnAngleThatIsNoNumberFillsAllButTheCentre) {
  const TestImage source = Gradient(20, 10, 8);
  ASSERT_EQ(Rotate(source, region_, {std::nan(""), 10, 5, 3, 3, INTERP_BILINEAR}), STATUS_OK);
  EXPECT_EQ(target_.rec()->rows[1][1], source.Get(10, 5));
  EXPECT_EQ(target_.rec()->rows[0][1], kFill[0]);
  EXPECT_EQ(target_.rec()->rows[1][2], kFill[0]);
}

}  // namespace
}  // namespace vorlanepic::testing
