// The pages that vorlane_apply makes, beside a plain rotation in real numbers.
#include <cmath>
#include <numbers>
#include <random>

#include <gtest/gtest.h>

#include "engine/api/picture.h"
#include "support/failing_heap.h"

namespace vorlane::testing {
namespace {

constexpr int32_t kWidth = 70;
constexpr int32_t kHeight = 54;

// Levels that rise by a few a pixel, in another direction for each channel.
Colour SlopeAt(double x, double y) {
  return {static_cast<uint8_t>(std::lround(20 + 2 * x + 1.2 * y)),
          static_cast<uint8_t>(std::lround(230 - 1.5 * x - 1.8 * y)),
          static_cast<uint8_t>(std::lround(128 + 1.4 * x - 2 * y))};
}

Picture Slopes(int32_t format, Layout layout) {
  Picture picture(kWidth, kHeight, format, layout);
  picture.Draw([](int32_t x, int32_t y) { return SlopeAt(x, y); });
  return picture;
}

// A decision for the slopes' picture: a turn, and a cut of 41 x 31 pixels about (36, 25).
vorlane_finding Decided(double turn) {
  const double radians = turn * std::numbers::pi / 180;
  const auto corner = [&](double u, double v) {
    return vorlane_point{36 + u * std::cos(radians) + v * std::sin(radians),
                         25 - u * std::sin(radians) + v * std::cos(radians)};
  };
  const vorlane_point corners[] = {corner(-20.5, -15.5), corner(20.5, -15.5), corner(20.5, 15.5),
                                   corner(-20.5, 15.5)};
  vorlane_finding finding = EmptyFinding();
  EXPECT_EQ(vorlane_finding_decide(&finding, kWidth, kHeight, turn, corners), VORLANE_OK);
  return finding;
}

// The result in memory of its exact size.
Picture Apply(const Picture& page, const vorlane_finding& finding,
              const vorlane_apply_options& options, Layout layout) {
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
};

// The core cuts places to tenths of a pixel toward the centre, so levels of these slopes are right
// to a step; a pixel of bits lies up to one pixel off.
TEST_P(FormatTest, TurnsAsAPlainRotationDoes) {
  const Picture page = Slopes(GetParam(), Layout::kTight);
  for (const double turn : {-45.0, -12.5, -2.0, 0.3, 3.0, 31.0}) {
    const double radians = turn * std::numbers::pi / 180;
    for (const int32_t interpolation : {VORLANE_NEAREST, VORLANE_BILINEAR, VORLANE_BICUBIC}) {
      vorlane_apply_options options = ApplyOptions();
      options.interpolation = interpolation;
      const Picture made = Apply(page, Decided(turn), options, Layout::kTight);
      ASSERT_EQ(made.width(), 41);
      ASSERT_EQ(made.height(), 31);
      const int most = interpolation == VORLANE_NEAREST ? 5 : 2;
      for (int32_t y = 0; y < 31; ++y) {
        for (int32_t x = 0; x < 41; ++x) {
          const double sx = 36 + (x - 20) * std::cos(radians) + (y - 15) * std::sin(radians);
          const double sy = 25 - (x - 20) * std::sin(radians) + (y - 15) * std::cos(radians);
          const bool isInside = sx > 1 && sy > 1 && sx < kWidth - 2 && sy < kHeight - 2;
          if (!isInside) continue;
          const Colour expected = SlopeAt(sx, sy);
          const Colour actual = made.Get(x, y);
          if (IsBits()) {
            if (std::abs(expected[1] - 127.5) < 5) continue;
            ASSERT_EQ(actual[1] >= 128, expected[1] >= 128) << turn << " at " << x << ", " << y;
            continue;
          }
          const bool isGrey = GetParam() == VORLANE_GREY8;
          for (size_t c = isGrey ? 1 : 0; c < (isGrey ? 2 : 3); ++c) {
            ASSERT_NEAR(actual[c], expected[c], most) << turn << " at " << x << ", " << y;
          }
        }
      }
    }
  }
}

TEST_P(FormatTest, RowsMayLieInAnyWayAndThreadsMayShareThem) {
  for (const double turn : {0.0, 2.0, -40.0}) {
    for (const bool isWhole : {false, true}) {
      for (int32_t quarters = 0; quarters < 4; ++quarters) {
        vorlane_apply_options options = ApplyOptions();
        options.keep_whole = isWhole ? 1 : 0;
        options.quarter_turns = quarters;
        const Picture plain =
            Apply(Slopes(GetParam(), Layout::kTight), Decided(turn), options, Layout::kTight);
        for (const Layout from : kLayouts) {
          for (const Layout to : kLayouts) {
            options.threads = from == to ? 1 : 3;
            const Picture page = Slopes(GetParam(), from);
            ASSERT_TRUE(SamePixels(plain, Apply(page, Decided(turn), options, to)))
                << turn << " and " << quarters << " quarters";
          }
        }
      }
    }
  }
}

TEST_P(FormatTest, ThreadsGiveTheSamePage) {
  Picture page(300, 260, GetParam(), Layout::kPadded);
  page.Draw([](int32_t x, int32_t y) { return SlopeAt(x % 70, y % 54); });
  vorlane_finding finding = EmptyFinding();
  ASSERT_EQ(vorlane_finding_decide(&finding, 300, 260, 3.7, nullptr), VORLANE_OK);
  vorlane_apply_options options = ApplyOptions();
  const Picture alone = Apply(page, finding, options, Layout::kTight);
  for (options.threads = 2; options.threads <= 64; options.threads *= 2) {
    ASSERT_TRUE(SamePixels(alone, Apply(page, finding, options, Layout::kTight)));
  }
}

TEST_P(FormatTest, QuarterTurnsMoveFinishedPixels) {
  for (const double turn : {0.0, 0.04, 5.0}) {
    const Picture page = Slopes(GetParam(), Layout::kTight);
    vorlane_apply_options options = ApplyOptions();
    const Picture upright = Apply(page, Decided(turn), options, Layout::kTight);
    for (options.quarter_turns = 1; options.quarter_turns < 4; ++options.quarter_turns) {
      const Picture turned = Apply(page, Decided(turn), options, Layout::kTight);
      for (int32_t y = 0; y < turned.height(); ++y) {
        for (int32_t x = 0; x < turned.width(); ++x) {
          const int32_t right = upright.width() - 1;
          const int32_t bottom = upright.height() - 1;
          const int32_t from[][2] = {{y, bottom - x}, {right - x, bottom - y}, {right - y, x}};
          const auto& [ux, uy] = from[options.quarter_turns - 1];
          ASSERT_EQ(turned.Get(x, y), upright.Get(ux, uy)) << turn << " at " << x << ", " << y;
        }
      }
    }
  }
}

TEST_P(FormatTest, ATinyTurnOnlyCutsAndAWholePageIsCopied) {
  const Picture page = Slopes(GetParam(), Layout::kTight);
  const Picture cut = Apply(page, Decided(0), ApplyOptions(), Layout::kTight);
  ASSERT_EQ(cut.width(), 41);
  ASSERT_EQ(cut.height(), 31);
  for (int32_t i = 0; i < 41 * 31; ++i) {
    ASSERT_EQ(cut.Get(i % 41, i / 41), page.Get(i % 41 + 16, i / 41 + 10));
  }
  vorlane_apply_options whole = ApplyOptions();
  whole.keep_whole = 1;
  EXPECT_TRUE(SamePixels(page, Apply(page, Decided(0.049), whole, Layout::kPadded)));
}

// A margin of 25 pixels about the cut, which begins at (16, 10).
TEST_P(FormatTest, FillsWhatLiesOutsideThePicture) {
  const Picture page = Slopes(GetParam(), Layout::kTight);
  const auto filledWith = [&](const Colour& colour) {
    vorlane_apply_options options = ApplyOptions();
    options.margin = 25;
    std::copy(colour.begin(), colour.end(), options.fill);
    const Picture made = Apply(page, Decided(0), options, Layout::kTight);
    EXPECT_EQ(made.width(), 91);
    EXPECT_EQ(made.Get(9, 15), page.Get(0, 0));
    EXPECT_EQ(made.Get(8, 15), made.Get(90, 80));
    return made.Get(8, 15);
  };
  // Luminance: 0.299 of red, 0.587 of green, 0.114 of blue.
  const Colour bluish = filledWith({10, 20, 200});
  const Colour reddish = filledWith({250, 100, 0});
  if (IsBits()) {
    EXPECT_EQ(bluish[0], 0);
    EXPECT_EQ(reddish[0], 255);
  } else if (GetParam() == VORLANE_GREY8) {
    EXPECT_EQ(bluish[0], 38);
    EXPECT_EQ(reddish[0], 133);
  } else {
    EXPECT_EQ(bluish, (Colour{10, 20, 200}));
    EXPECT_EQ(reddish, (Colour{250, 100, 0}));
  }
}

INSTANTIATE_TEST_SUITE_P(Formats, FormatTest, ::testing::ValuesIn(kFormats));

TEST(Apply, StaysWithinTheBoundsForAnyFinding) {
  std::mt19937 random(7);
  const auto between = [&](double least, double most) {
    return std::uniform_real_distribution(least, most)(random);
  };
  for (int32_t i = 0; i < 20000; ++i) {
    vorlane_image page{};
    page.width = static_cast<int32_t>(between(1, 60));
    page.height = static_cast<int32_t>(between(1, 60));
    page.stride = page.width;
    page.format = VORLANE_GREY8;
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
    int32_t width = 0;
    int32_t height = 0;
    int32_t mostWidth = 0;
    int32_t mostHeight = 0;
    ASSERT_EQ(vorlane_max_result_size(&page, &options, &mostWidth, &mostHeight), VORLANE_OK);
    const vorlane_status status = vorlane_result_size(&page, &finding, &options, &width, &height);
    ASSERT_TRUE(status == VORLANE_OK || (status == VORLANE_BAD_FINDING && i % 2 == 1)) << status;
    ASSERT_LE(width, mostWidth);
    ASSERT_LE(height, mostHeight);
  }
}

TEST(Apply, ACutThatIsNotBelievedKeepsThePageWhole) {
  const Picture page = Slopes(VORLANE_GREY8, Layout::kTight);
  vorlane_finding finding = Decided(0);
  finding.cut_confidence = VORLANE_DOUBTFUL;
  EXPECT_TRUE(SamePixels(page, Apply(page, finding, ApplyOptions(), Layout::kTight)));
}

TEST(Apply, WithoutMemoryLeavesTheResultAlone) {
  for (const int32_t format : {VORLANE_GREY8, VORLANE_BGRX32}) {
    const Picture page = Slopes(format, Layout::kTight);
    const vorlane_image image = page.image();
    const vorlane_finding finding = Decided(2);
    Picture made(41, 31, format, Layout::kTight);
    made.Draw([](int32_t, int32_t) { return Colour{1, 2, 3}; });
    const Picture before = made;
    vorlane_status status = VORLANE_OK;
    int32_t failures = 0;
    const auto apply = [&] {
      const Context context;
      vorlane_result result = made.result();
      status = vorlane_apply(context.get(), &image, &finding, nullptr, &result);
    };
    vorlanepic::testing::ForEachHeapFailure(apply, [&](int32_t) {
      ++failures;
      EXPECT_EQ(status, VORLANE_NO_MEMORY);
      EXPECT_TRUE(SamePixels(made, before));
    });
    EXPECT_GE(failures, 5);
    EXPECT_EQ(status, VORLANE_OK);
    EXPECT_FALSE(SamePixels(made, before));
  }
}

}  // namespace
}  // namespace vorlane::testing
