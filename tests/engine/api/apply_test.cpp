// The pages that vorlane_apply makes, beside a plain rotation in real numbers.
#include <cmath>
#include <numbers>
#include <random>

#include <gtest/gtest.h>

#include "engine/api/picture.h"
#include "support/failing_heap.h"

namespace vorlane::testing {
namespace {

constexpr int32_t kWidth = 150;
constexpr int32_t kHeight = 110;

// Levels that rise by about one a pixel, in another direction for each channel.
Colour SlopeAt(double x, double y) {
  return {static_cast<uint8_t>(std::lround(20 + x + 0.7 * y)),
          static_cast<uint8_t>(std::lround(240 - 0.8 * x - y)),
          static_cast<uint8_t>(std::lround(110 + 0.9 * x - y))};
}

Picture Slopes(int32_t format, Layout layout) {
  Picture picture(kWidth, kHeight, format, layout);
  picture.Draw([](int32_t x, int32_t y) { return SlopeAt(x, y); });
  return picture;
}

// The place in the picture that a turn takes to (u, v) from (76, 55).
vorlane_point PlaceOf(double turn, double u, double v) {
  const double radians = turn * std::numbers::pi / 180;
  return {76 + u * std::cos(radians) + v * std::sin(radians),
          55 - u * std::sin(radians) + v * std::cos(radians)};
}

// A decision for the slopes' picture: a turn, and a cut of 121 x 91 pixels.
vorlane_finding Decided(double turn) {
  const vorlane_point corners[] = {PlaceOf(turn, -60.5, -45.5), PlaceOf(turn, 60.5, -45.5),
                                   PlaceOf(turn, 60.5, 45.5), PlaceOf(turn, -60.5, 45.5)};
  vorlane_finding finding = EmptyFinding();
  EXPECT_EQ(vorlane_finding_decide(&finding, kWidth, kHeight, turn, corners), VORLANE_OK);
  return finding;
}

// The result in memory of its exact size.
Picture Apply(const Picture& page, const vorlane_finding& finding,
              const vorlane_apply_options& options, Layout layout = Layout::kTight) {
  const Context context;
  const vorlane_image image = page.image();
  int32_t width = 0;
  int32_t height = 0;
  EXPECT_EQ(vorlane_result_size(&image, &finding, &options, &width, &height), VORLANE_OK);
  Picture made(width, height, image.format, layout);
  vorlane_result result = made.result();
  EXPECT_EQ(vorlane_apply(context.get(), &image, &finding, &options, &result), VORLANE_OK);
  EXPECT_TRUE(made.IsCleanBetweenPixels());
  return made;
}

class FormatTest : public ::testing::TestWithParam<int32_t> {
 protected:
  bool IsBits() const { return GetParam() <= VORLANE_BIT_DARK; }
  bool IsGrey() const { return GetParam() == VORLANE_GREY8; }

  // Compares what the format holds of two colours; bits near their threshold may be either.
  bool IsNear(const Colour& actual, const Colour& expected, int most) const {
    if (IsBits()) {
      return std::abs(expected[1] - 127.5) < 3 || (actual[1] >= 128) == (expected[1] >= 128);
    }
    const auto isNear = [&](size_t c) { return std::abs(actual[c] - expected[c]) <= most; };
    return isNear(1) && (IsGrey() || (isNear(0) && isNear(2)));
  }

  const Picture page_ = Slopes(GetParam(), Layout::kTight);
};

// The core cuts places to tenths of a pixel toward the centre, so levels of these slopes are right
// to a step; the nearest pixel lies up to one off either way.
TEST_P(FormatTest, TurnsAsAPlainRotationDoes) {
  for (const double turn : {-45.0, -12.5, -2.0, 0.3, 3.0, 31.0}) {
    for (const int32_t interpolation : {VORLANE_NEAREST, VORLANE_BILINEAR, VORLANE_BICUBIC}) {
      vorlane_apply_options options = ApplyOptions();
      options.interpolation = interpolation;
      const Picture made = Apply(page_, Decided(turn), options);
      ASSERT_EQ(made.width(), 121);
      ASSERT_EQ(made.height(), 91);
      for (int32_t i = 0; i < 121 * 91; ++i) {
        const auto [x, y] = PlaceOf(turn, i % 121 - 60, i / 121 - 45);
        if (x <= 1 || y <= 1 || x >= kWidth - 2 || y >= kHeight - 2) continue;
        const int most = interpolation == VORLANE_NEAREST ? 3 : 2;
        ASSERT_TRUE(IsNear(made.Get(i % 121, i / 121), SlopeAt(x, y), most)) << turn << " at " << i;
      }
    }
  }
}

// An even number of rows and columns, an odd one, and slanted; cut and whole.
TEST_P(FormatTest, RowsLieInAnyWayThreadsShareThemAndQuarterTurnsMoveThem) {
  for (const double turn : {0.0, 0.04, 2.0, -40.0}) {
    for (const int32_t isWhole : {0, 1}) {
      vorlane_apply_options options = ApplyOptions();
      options.keep_whole = isWhole;
      const Picture upright = Apply(page_, Decided(turn), options);
      for (int32_t quarters = 0; quarters < 4; ++quarters) {
        options.quarter_turns = quarters;
        const bool isTall = quarters % 2 != 0;
        Picture expected(isTall ? upright.height() : upright.width(),
                         isTall ? upright.width() : upright.height(), GetParam(), Layout::kTight);
        expected.Draw([&](int32_t x, int32_t y) {
          const int32_t right = upright.width() - 1;
          const int32_t bottom = upright.height() - 1;
          const int32_t from[][2] = {
              {x, y}, {y, bottom - x}, {right - x, bottom - y}, {right - y, x}};
          return upright.Get(from[quarters][0], from[quarters][1]);
        });
        for (const Layout layout : kLayouts) {
          options.threads = options.threads % 5 + 1;
          const Picture page = Slopes(GetParam(), layout);
          const auto to = static_cast<Layout>(options.threads % 3);
          ASSERT_TRUE(SamePixels(expected, Apply(page, Decided(turn), options, to)))
              << turn << ", " << quarters << " quarters, " << options.threads << " threads";
        }
      }
    }
  }
}

// The cut begins at (16, 10); with a margin of 25 pixels it reaches 9 and 15 beyond the picture.
TEST_P(FormatTest, ATinyTurnOnlyCutsAndFillsWhatLiesOutside) {
  vorlane_apply_options options = ApplyOptions();
  options.margin = 25;
  const Colour fill = {250, 100, 0};  // luminance 0.299 * 250 + 0.587 * 100 = 133
  std::copy(fill.begin(), fill.end(), options.fill);
  const Colour outside = IsBits() ? Colour{255, 255, 255} : IsGrey() ? Colour{133, 133, 133} : fill;
  const Picture made = Apply(page_, Decided(0), options);
  ASSERT_EQ(made.width(), 171);
  for (int32_t i = 0; i < 171 * 141; ++i) {
    const int32_t x = i % 171 - 9;
    const int32_t y = i / 171 - 15;
    const bool isInside = x >= 0 && x < kWidth && y >= 0 && y < kHeight;
    ASSERT_EQ(made.Get(x + 9, y + 15), isInside ? page_.Get(x, y) : outside);
  }
  vorlane_finding unsure = Decided(0.049);
  unsure.cut_confidence = VORLANE_DOUBTFUL;
  EXPECT_TRUE(SamePixels(page_, Apply(page_, unsure, ApplyOptions())));
}

INSTANTIATE_TEST_SUITE_P(Formats, FormatTest, ::testing::ValuesIn(kFormats));

TEST(Apply, StaysWithinTheBoundsForAnyFinding) {
  std::mt19937 random(7);
  const auto between = [&](double least, double most) {
    return std::uniform_real_distribution(least, most)(random);
  };
  for (int32_t i = 0; i < 20000; ++i) {
    const vorlane_image page{nullptr, 60, int32_t(between(1, 60)), int32_t(between(1, 60)),
                             VORLANE_GREY8};
    vorlane_apply_options options = ApplyOptions();
    options.max_turn = between(0, 180);
    options.margin = between(-2, 5);
    options.max_growth = 200;
    options.quarter_turns = i % 4;
    vorlane_point corners[4];
    for (vorlane_point& corner : corners) corner = {between(-9, 70), between(-9, 70)};
    vorlane_finding finding = EmptyFinding();
    const double turn = i % 3 == 0 ? options.max_turn : between(-options.max_turn, 0);
    vorlane_finding_decide(&finding, page.width, page.height, turn, i % 2 == 0 ? nullptr : corners);
    int32_t size[4] = {};
    ASSERT_EQ(vorlane_max_result_size(&page, &options, &size[0], &size[1]), VORLANE_OK);
    const vorlane_status status =
        vorlane_result_size(&page, &finding, &options, &size[2], &size[3]);
    ASSERT_TRUE(status == VORLANE_OK || (status == VORLANE_BAD_FINDING && i % 2 == 1)) << status;
    ASSERT_LE(size[2], size[0]);
    ASSERT_LE(size[3], size[1]);
  }
}

TEST(Apply, WithoutMemoryLeavesTheResultAlone) {
  for (const int32_t format : {VORLANE_GREY8, VORLANE_BGRX32}) {
    const Picture page = Slopes(format, Layout::kTight);
    const vorlane_image image = page.image();
    const vorlane_finding finding = Decided(2);
    Picture made(121, 91, format, Layout::kTight);
    const Picture before = made;
    vorlane_status status = VORLANE_OK;
    const auto apply = [&] {
      const Context context;
      vorlane_result result = made.result();
      status = context.get() == nullptr
                   ? VORLANE_NO_MEMORY
                   : vorlane_apply(context.get(), &image, &finding, nullptr, &result);
    };
    vorlanepic::testing::ForEachHeapFailure(apply, [&](int32_t) {
      EXPECT_EQ(status, VORLANE_NO_MEMORY);
      EXPECT_TRUE(SamePixels(made, before));
    });
    EXPECT_EQ(status, VORLANE_OK);
    EXPECT_FALSE(SamePixels(made, before));
  }
}

}  // namespace
}  // namespace vorlane::testing
