// What vorlane_detect makes of drawn pages, whichever way their pixels come.
#include <cmath>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "engine/api/context.h"
#include "engine/api/picture.h"
#include "support/page_drawing.h"

namespace vorlane::testing {
namespace {

// A drawn page in any format.
Picture Scan(double degrees, int32_t format, Layout layout) {
  vorlanepic::testing::DrawnPage page;
  page.degrees = degrees;
  page.text = true;
  const auto drawn = vorlanepic::testing::DrawPage(page);
  Picture picture(page.imageWidth, page.imageHeight, format, layout);
  picture.Draw([&](int32_t x, int32_t y) {
    const uint8_t level = drawn.Get(x, y);
    return Colour{level, level, level};
  });
  return picture;
}

// The finding's bytes, and those of the upright page behind them.
std::vector<uint8_t> WorkOn(const Picture& scan, vorlane_context* context) {
  const vorlane_image image = scan.image();
  vorlane_finding finding = EmptyFinding();
  EXPECT_EQ(vorlane_detect(context, &image, nullptr, &finding), VORLANE_OK);
  EXPECT_GE(finding.turn_confidence, VORLANE_LIKELY);
  std::vector<uint8_t> all(sizeof finding + 1'500'000);
  const auto* bytes = reinterpret_cast<const uint8_t*>(&finding);
  std::copy_n(bytes, sizeof finding, all.data());
  vorlane_result result{all.data() + sizeof finding, 2400, 600, 600};
  EXPECT_EQ(vorlane_apply(context, &image, &finding, nullptr, &result), VORLANE_OK);
  return all;
}

TEST(Detect, FindsAlikeWhicheverWayPixelsCome) {
  const Context context;
  const auto find = [&](int32_t format, Layout layout) {
    std::vector<uint8_t> found = WorkOn(Scan(2.5, format, layout), context.get());
    found.resize(sizeof(vorlane_finding));
    return found;
  };
  const std::vector<uint8_t> grey = find(VORLANE_GREY8, Layout::kTight);
  const std::vector<uint8_t> bits = find(VORLANE_BIT_LIGHT, Layout::kTight);
  EXPECT_NEAR(reinterpret_cast<const vorlane_finding*>(grey.data())->turn, -2.5, 0.1);
  for (const int32_t format : kFormats) {
    for (const Layout layout : kLayouts) {
      EXPECT_TRUE(find(format, layout) == (format <= VORLANE_BIT_DARK ? bits : grey)) << format;
    }
  }
}

// A sheet of 45,000 x 500 pixels that lies turned by 0.2 degrees, and the same down the picture.
TEST(Detect, FindsOnPagesWithTheLongestEdge) {
  constexpr int32_t kLongest = VORLANE_MAX_EDGE;
  const Context context;
  for (const bool isTall : {false, true}) {
    const int32_t width = isTall ? 900 : kLongest;
    const int32_t height = isTall ? kLongest : 900;
    Picture strip(width, height, VORLANE_GREY8, Layout::kTight);
    strip.Draw([&](int32_t x, int32_t y) {
      const double slope = isTall ? -0.0034907 : 0.0034907;
      const double along = (isTall ? y : x) - kLongest / 2.0;
      const double across = (isTall ? x : y) - 450.0 - slope * along;
      const bool isSheet = std::abs(across) <= 250.0 && std::abs(along) <= 22'500.0;
      return isSheet ? Colour{230, 230, 230} : Colour{20, 20, 20};
    });
    const vorlane_image image = strip.image();
    vorlane_finding finding = EmptyFinding();
    ASSERT_EQ(vorlane_detect(context.get(), &image, nullptr, &finding), VORLANE_OK);
    EXPECT_GE(finding.turn_confidence, VORLANE_LIKELY) << isTall;
    EXPECT_NEAR(finding.turn, -0.2, 0.01) << isTall;
    EXPECT_NEAR(finding.corners[0].x, isTall ? 277 : 670, 12) << isTall;
  }
}

TEST(Detect, NothingIsMadeOfABlankPage) {
  const Context context;
  Picture blank(300, 200, VORLANE_GREY8, Layout::kTight);
  blank.Draw([](int32_t, int32_t) { return Colour{90, 90, 90}; });
  const vorlane_image image = blank.image();
  vorlane_finding finding = EmptyFinding();
  ASSERT_EQ(vorlane_detect(context.get(), &image, nullptr, &finding), VORLANE_OK);
  EXPECT_EQ(finding.turn_confidence, VORLANE_REFUSED);
  EXPECT_GE(finding.reason_count, 1);
  vorlane_result result = blank.result();
  EXPECT_EQ(vorlane_apply(context.get(), &image, &finding, nullptr, &result),
            VORLANE_NOT_CONFIDENT);
  context.get()->isBusy = true;
  EXPECT_EQ(vorlane_detect(context.get(), &image, nullptr, &finding), VORLANE_BUSY);
  EXPECT_EQ(vorlane_context_trim(context.get()), VORLANE_BUSY);
}

TEST(Detect, FourThreadsFindAndMakeWhatOneDoes) {
  std::vector<Picture> scans;
  for (const double degrees : {-7.0, -0.4, 1.3, 12.0}) {
    for (const int32_t format : kFormats) scans.push_back(Scan(degrees, format, Layout::kPadded));
  }
  std::vector<std::vector<uint8_t>> made[5];
  const auto work = [&](std::vector<std::vector<uint8_t>>& pages) {
    const Context context;
    for (const Picture& scan : scans) {
      pages.push_back(WorkOn(scan, context.get()));
      EXPECT_EQ(vorlane_context_trim(context.get()), VORLANE_OK);
    }
  };
  std::vector<std::thread> threads;
  for (size_t i = 1; i < 5; ++i) threads.emplace_back([&, i] { work(made[i]); });
  work(made[0]);
  for (std::thread& thread : threads) thread.join();
  for (const auto& each : made) EXPECT_TRUE(each == made[0]);
}

}  // namespace
}  // namespace vorlane::testing
