#include "deskew/content_bounds.h"

#include <random>

#include "deskew/bright_lines_sse2.h"
#include "deskew/content_search.h"
#include "deskew/deskew_fixture.h"

namespace vorlanepic::testing {

using namespace deskew;
namespace {

// Makes an area as light as paper.
void Fill(TestImage* image, const frame::PixelRect& area) {
  FillRectangle(image, area.left, area.top, area.right, area.bottom, 200);
}

class FindContentBoundsTest : public DeskewTest, public ::testing::WithParamInterface<int32_t> {
 protected:
  static frame::PixelRect Find(const TestImage& image, uint32_t searchLimit, uint32_t pixelCount,
                               bool takesShare = false) {
    frame::PixelRect bounds{-1, -1, -1, -1};
    EXPECT_EQ(FindContentBounds(*image.rec(),
                                {searchLimit, pixelCount, 100, kSearchRowsAndColumns, takesShare},
                                &bounds),
              STATUS_OK);
    return bounds;
  }
};

INSTANTIATE_TEST_SUITE_P(Depths, FindContentBoundsTest, ::testing::Values(1, 8, 24),
                         ::testing::PrintToStringParamName());

// Rows 0..99 are dark: probed are 0, 8, .. 96, 104 and then 105, 106, 107, where the run of four
// exceeds 3; the search goes back to 107 - 4 - 11 = 92 and takes the first bright row from there.
// From the other end of 200, 199, 191, .. 103 are dark and 95..92 make the run: 92 + 4 + 11 = 107.
TEST_P(FindContentBoundsTest, LooksElevenLinesBeyondTheRun) {
  constexpr frame::PixelRect kAllOfIt{0, 199, 0, 199};
  struct Case {
    int32_t frame::PixelRect::*paperStart;  // where the paper's limit is set
    int32_t paper;
    int32_t frame::PixelRect::*lineOther;  // the other limit of the bright line
    int32_t beyond;                        // a bright line here is not seen, ...
    int32_t within;                        // ... one here is
  };
  for (const Case& c : {Case{&frame::PixelRect::top, 100, &frame::PixelRect::bottom, 91, 92},
                        Case{&frame::PixelRect::bottom, 99, &frame::PixelRect::top, 108, 107},
                        Case{&frame::PixelRect::left, 100, &frame::PixelRect::right, 91, 92},
                        Case{&frame::PixelRect::right, 99, &frame::PixelRect::left, 108, 107}}) {
    TestImage image(200, 200, GetParam());
    frame::PixelRect area = kAllOfIt;
    area.*c.paperStart = c.paper;
    Fill(&image, area);
    area.*c.paperStart = area.*c.lineOther = c.beyond;
    Fill(&image, area);
    EXPECT_EQ(Find(image, 3, 5).*c.paperStart, c.paper);
    area.*c.paperStart = area.*c.lineOther = c.within;
    Fill(&image, area);
    EXPECT_EQ(Find(image, 3, 5).*c.paperStart, c.within);
  }
}

// A limit that no run reaches, as a negative setting gives: the first bright lines of all count.
TEST_P(FindContentBoundsTest, TakesTheOutermostBrightLinesWithoutARun) {
  TestImage image(150, 140, GetParam());
  Fill(&image, {3, 60, 2, 50});
  Fill(&image, {140, 140, 0, 139});
  EXPECT_EQ(Find(image, 0xFFFFFFFEU, 5), (frame::PixelRect{3, 140, 2, 50}));
  EXPECT_EQ(Find(TestImage(90, 70, GetParam()), 3, 5), (frame::PixelRect{0, 89, 0, 69}));
}

// 100 wide, 20 high: a count of 101 becomes 30, which is above the height, and then 6. With a
// height of 40 it stays at 30.
TEST_P(FindContentBoundsTest, ACountBeyondTheImageBecomesAShareOfIt) {
  TestImage higher(100, 40, GetParam());
  Fill(&higher, {30, 60, 0, 33});
  Fill(&higher, {10, 39, 36, 36});
  EXPECT_EQ(Find(higher, 0, 101), (frame::PixelRect{30, 60, 0, 33}));
  TestImage image(100, 20, GetParam());
  Fill(&image, {30, 60, 0, 7});
  Fill(&image, {20, 70, 0, 5});
  EXPECT_EQ(Find(image, 0, 101), (frame::PixelRect{30, 60, 0, 7}));
}

TEST_P(FindContentBoundsTest, TakesAShareOfTheLine) {
  const int32_t rowShare = GetParam() == 1 ? 40 : 30;  // of 100
  TestImage image(100, 210, GetParam());
  Fill(&image, {10, 9 + rowShare, 16, 16});
  Fill(&image, {10, 10 + rowShare, 20, 119});
  // Of the 100 rows 20..119 a column takes 31.
  Fill(&image, {5, 5, 20, 49});
  Fill(&image, {7, 7, 20, 50});
  EXPECT_EQ(Find(image, 0, 1, true), (frame::PixelRect{7, 10 + rowShare, 20, 119}));
  EXPECT_EQ(Find(image, 0, 1).top, 16);
}

TEST_P(FindContentBoundsTest, LooksForColumnsInTheGivenRows) {
  TestImage image(100, 50, GetParam());
  Fill(&image, {10, 89, 0, 9});
  Fill(&image, {30, 49, 10, 39});
  frame::PixelRect bounds{-1, -1, 10, 49};
  const ContentSearch search{0, 5, 100, kSearchColumns};
  ASSERT_EQ(FindContentBounds(*image.rec(), search, &bounds), STATUS_OK);
  EXPECT_EQ(bounds, (frame::PixelRect{30, 49, 10, 49}));

  for (const frame::PixelRect& refused :
       {frame::PixelRect{0, 0, -1, 40}, frame::PixelRect{0, 0, 0, -1},
        frame::PixelRect{0, 0, 0, 50}}) {
    bounds = refused;
    EXPECT_EQ(FindContentBounds(*image.rec(), search, &bounds), BAD_ARGUMENT);
  }
  bounds = {0, 0, INT32_MAX, 40};  // no row at all
  EXPECT_EQ(FindContentBounds(*image.rec(), search, &bounds), STATUS_OK);
  EXPECT_EQ(bounds, (frame::PixelRect{0, 99, INT32_MAX, 40}));
}

// Six bright pixels, the last of them in the last row.
TEST_P(FindContentBoundsTest, ABitColumnEndsAboveTheLastRow) {
  TestImage image(100, 20, GetParam());
  Fill(&image, {40, 59, 14, 19});
  frame::PixelRect bounds{0, 0, 0, 19};
  ASSERT_EQ(FindContentBounds(*image.rec(), {0, 5, 100, kSearchColumns}, &bounds), STATUS_OK);
  EXPECT_EQ(bounds.left, GetParam() == 1 ? 0 : 40);
  ASSERT_EQ(FindContentBounds(*image.rec(), {0, 4, 100, kSearchColumns}, &bounds), STATUS_OK);
  EXPECT_EQ(bounds.left, 40);
}

TEST(BrightColour, TakesTheLuminance) {
  struct Case {
    uint8_t pixel[3];  // blue, green, red
    uint8_t luminance;
  };
  // 149.7, 76.2 and 29.1, each above its whole part less one only.
  for (const Case& c : {Case{{0, 255, 0}, 149}, Case{{0, 0, 255}, 76}, Case{{255, 0, 0}, 29}}) {
    EXPECT_TRUE(BrightColour::IsBright(c.pixel, 0, static_cast<uint8_t>(c.luminance - 1)));
    EXPECT_FALSE(BrightColour::IsBright(c.pixel, 0, c.luminance));
  }
}

#if defined(VORLANEPIC_X86)

enum { kNoise, kTwoNeighbouringLevels, kLightCornerOnDark, kFillings };

TestImage MakeImage(int32_t width, int32_t height, int32_t depth, int32_t filling, uint32_t seed) {
  TestImage image = DrawNoise(width, height, depth, seed);
  const int32_t lineBytes = image.rec()->lineBytes;
  for (int32_t i = 0; i < image.rec()->imageBytes && filling != kNoise; ++i) {
    uint8_t& byte = image.rec()->pixels[i];
    const bool isCorner = i / lineBytes > height / 4 && i % lineBytes > lineBytes / 3;
    if (filling == kTwoNeighbouringLevels) byte = static_cast<uint8_t>(seed + byte % 2);
    if (filling == kLightCornerOnDark) byte = isCorner ? 255 : 0;
  }
  return image;
}

template <typename Kernel>
void ExpectLinesAlike(int32_t depth) {
  std::mt19937 random(7);
  const auto upTo = [&](int32_t n) { return std::uniform_int_distribution(0, n)(random); };
  const auto threshold = [&] { return upTo(2) == 0 ? 255 * upTo(1) : upTo(255); };
  for (int32_t width = 1; width <= 200; width += width < 70 ? 1 : 13) {
    for (int32_t filling = 0; filling < kFillings; ++filling) {
      SCOPED_TRACE(::testing::Message() << "width " << width << ", filling " << filling);
      const int32_t height = 1 + upTo(149);
      const TestImage image =
          MakeImage(width, height, depth, filling, static_cast<uint32_t>(upTo(255)));
      const auto level = static_cast<uint8_t>(threshold());
      PlainLines<typename Kernel::Pixel> plain(*image.rec(), level);
      FastLines<Kernel> fast(*image.rec(), level);
      for (int32_t y = 0; y < height; ++y) {
        const auto count = static_cast<uint32_t>(upTo(width));
        ASSERT_EQ(fast.IsBrightRow(y, count), plain.IsBrightRow(y, count)) << y << ", " << count;
      }
      const int32_t top = upTo(height - 1);
      const auto count = static_cast<uint32_t>(upTo(height) / 2);
      plain.SelectRows(top, height - 1);
      fast.SelectRows(top, height - 1);
      for (int32_t i = 0; i < 2 * width; ++i) {
        const int32_t x = i < width ? i : 2 * width - 1 - i;
        ASSERT_EQ(fast.IsBrightColumn(x, count), plain.IsBrightColumn(x, count))
            << x << ", " << count;
      }
    }
  }
}

TEST(FastLines, AreThePlainOnes) {
  ExpectLinesAlike<BitKernel>(1);
  ExpectLinesAlike<GreyKernel>(8);
  ExpectLinesAlike<ColourKernel>(24);
}

#endif

}  // namespace
}  // namespace vorlanepic::testing
