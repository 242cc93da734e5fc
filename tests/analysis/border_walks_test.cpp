#include "analysis/border_walks.h"

#include <random>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "analysis/border_walks_plain.h"
#include "analysis/pixel_access.h"
#include "support/page_drawing.h"

namespace vorlanepic::testing {

using namespace analysis;
namespace {

template <typename Pixel>
constexpr int32_t kDepth = 8;
template <>
constexpr int32_t kDepth<Bit1> = 1;
template <>
constexpr int32_t kDepth<Colour24> = 24;

// Rows without padding, so that a sanitizer sees every byte too many. They are light and dark in
// stretches of 1..longest pixels; for 1 every byte, at 1 bit every pixel, is light with the chance
// `share`, and levels vary.
TestImage DrawRows(int32_t width, int32_t height, int32_t depth, int32_t longest, double share) {
  const int32_t padded = (width * depth + 31) / 32 * 4;
  TestImage image(width, height, depth, (width * depth + 7) / 8 - padded);
  std::mt19937 random(7);
  std::bernoulli_distribution isLight(share);
  std::uniform_int_distribution<int32_t> length(1, longest);
  bool light = false;
  int32_t left = 0;
  const auto next = [&] {
    if (left == 0) light = longest == 1 ? isLight(random) : !light;
    left = left == 0 ? length(random) - 1 : left - 1;
  };
  for (int32_t i = 0; i < image.rec()->imageBytes; ++i) {
    auto byte = longest == 1 ? static_cast<uint32_t>(random() % 128) : 40U;
    if (depth == 8 || (depth == 24 && (longest == 1 || i % 3 == 0))) next();
    if (depth > 1 && light) byte += 128;
    for (int32_t bit = 0; depth == 1 && bit < 8; ++bit) {
      next();
      byte = byte << 1 | light;
    }
    image.rec()->pixels[i] = static_cast<uint8_t>(byte);
  }
  return image;
}

std::vector<TestImage> Images(int32_t width, int32_t height, int32_t depth) {
  std::vector<TestImage> images;
  for (const double share : {0.0, 0.02, 0.3, 0.7, 0.97, 1.0}) {
    images.push_back(DrawRows(width, height, depth, 1, share));
  }
  for (const int32_t longest : {3, 6, 20, 90}) {
    images.push_back(DrawRows(width, height, depth, longest, 0));
  }
  return images;
}

template <typename Pixel>
class BorderWalksTest : public ::testing::Test {
 protected:
  void CompareRows(const TestImage& image, const frame::PixelRect& band, GreyBand levels,
                   int32_t run) {
    for (int32_t y = 0; y < image.rec()->height; ++y) {
      const uint8_t* row = image.row(y);
      ASSERT_EQ(WalkFromLeft<Pixel>(row, band, levels, run),
                PlainWalkFromLeft<Pixel>(row, band, levels, run));
      ASSERT_EQ(WalkFromRight<Pixel>(row, band, levels, run),
                PlainWalkFromRight<Pixel>(row, band, levels, run));
    }
  }

  void CompareColumns(const TestImage& image, const frame::PixelRect& band, GreyBand levels,
                      int32_t run) {
    const ColumnRange columns{band.left, band.right};
    std::vector<int32_t> top(columns.count());
    std::vector<int32_t> bottom(top);
    std::vector<int32_t> plainTop(top);
    std::vector<int32_t> plainBottom(top);
    ASSERT_EQ(WalkColumns<Pixel>(*image.rec(), band, levels, run, columns, {top, bottom}), 0);
    PlainWalkColumns<Pixel>(*image.rec(), band, levels, run, columns, {plainTop, plainBottom});
    ASSERT_EQ(top, plainTop);
    ASSERT_EQ(bottom, plainBottom);
  }

  // All bands, whole and in part, and all lengths of run, in images of this size.
  template <typename Compare>
  static void ForEachScan(int32_t width, int32_t height, Compare compare) {
    const frame::PixelRect whole{0, width - 1, 0, height - 1};
    const frame::PixelRect inner{width / 5, width - 1 - width / 7, height / 5, height - 1};
    for (const TestImage& image : Images(width, height, kDepth<Pixel>)) {
      for (int32_t run = 1; run <= kLongestRun; ++run) {
        SCOPED_TRACE(::testing::PrintToString(std::make_tuple(width, height, run)));
        for (const GreyBand levels : {GreyBand{128, 255}, {30, 48}, {255, 255}}) {
          compare(image, whole, levels, run);
          compare(image, inner, levels, run);
        }
      }
    }
  }
};

using Depths = ::testing::Types<Bit1, Grey8, Colour24>;
TYPED_TEST_SUITE(BorderWalksTest, Depths);

TYPED_TEST(BorderWalksTest, RowsMeetTheBorderWhereThePlainWalksDo) {
  for (const int32_t width : {1, 2, 9, 16, 63, 64, 65, 72, 100, 127, 128, 129, 200, 331}) {
    this->ForEachScan(width, 12, [this](auto&&... scan) { this->CompareRows(scan...); });
  }
}

TYPED_TEST(BorderWalksTest, ColumnsMeetTheBorderWhereThePlainWalksDo) {
  for (const int32_t width : {1, 2, 63, 64, 65, 150}) {
    for (const int32_t height : {1, 2, 5, 12, 31, 48}) {
      this->ForEachScan(width, height, [this](auto&&... scan) { this->CompareColumns(scan...); });
    }
  }
}

// Comments: rounds as they are met from the left | from the right.
TEST(BitWalks, StepOverZeroBytesAndStopBehindARun) {
  struct Case {
    std::vector<uint8_t> row;
    int32_t width;
    int32_t run;
    int32_t left;
    int32_t right;
  };
  const Case cases[] = {
      // (0, 8) (16, 17) | (23, 22) (21, 20) (19, 18)
      {{0x00, 0x00, 0xF0}, 24, 2, 18, 17},
      // (0, 1) (2, 3) (4, 5) ... never 3 and 4 in one round | (7, 6) (5, 4) (3, 2) ...
      {{0x18}, 8, 2, kNoBorder, kNoBorder},
      // (0, 8) (9, 10) (11, 12): the zero byte has moved the rounds to odd pixels | (15, 14) ...
      {{0x00, 0x18}, 16, 2, 13, kNoBorder},
      // (0, 1, 2) (3, 4, 5) (6, 7, 8) (16, 17, 18) | (23, 22, 21)
      {{0x01, 0x00, 0xFF}, 24, 3, 19, 20},
      // (0) | (10) (2): from the third pixel of a byte to the third of the next
      {{0xFF, 0x00}, 11, 1, 1, 1},
      // (0) | (10) (9) (8) (7): padding counts for the zero test
      {{0xFF, 0x1F}, 11, 1, 1, 6},
      // (0, 1, 2, 3) ... (60, 61, 62) is cut short | (62, 61, 60, 59) ... (2, 1, 0) too
      {{0x01, 0x01, 0x01, 0x01, 0x01, 0x01, 0x01, 0x0F}, 63, 4, kNoBorder, kNoBorder},
      // (0, 1) | (1, 0): the points are the columns outside the image
      {{0xFF}, 2, 2, 2, -1},
  };
  for (const auto& [row, width, run, left, right] : cases) {
    const GuardedBytes bytes(row.begin(), row.end());
    const frame::PixelRect band{0, width - 1, 0, 0};
    SCOPED_TRACE(::testing::PrintToString(row));
    EXPECT_EQ(PlainWalkFromLeft<Bit1>(bytes.data(), band, {}, run), left);
    EXPECT_EQ(WalkFromLeft<Bit1>(bytes.data(), band, {}, run), left);
    EXPECT_EQ(PlainWalkFromRight<Bit1>(bytes.data(), band, {}, run), right);
    EXPECT_EQ(WalkFromRight<Bit1>(bytes.data(), band, {}, run), right);
  }
}

}  // namespace
}  // namespace vorlanepic::testing
