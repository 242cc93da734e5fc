// What vorlane_detect makes of drawn pages, whichever way their pixels come.
#include <cmath>
#include <cstring>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "engine/api/context.h"
#include "engine/api/picture.h"
#include "support/page_drawing.h"

namespace vorlane::testing {
namespace {

// A drawn page of the format, from which colours and bits are made as well.
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

vorlane_finding Detect(const Picture& scan) {
  const Context context;
  vorlane_finding finding = EmptyFinding();
  const vorlane_image image = scan.image();
  EXPECT_EQ(vorlane_detect(context.get(), &image, nullptr, &finding), VORLANE_OK);
  return finding;
}

TEST(Detect, FindsThePageWhicheverWayItsPixelsCome) {
  const vorlane_finding grey = Detect(Scan(2.5, VORLANE_GREY8, Layout::kTight));
  const vorlane_finding bits = Detect(Scan(2.5, VORLANE_BIT_LIGHT, Layout::kTight));
  EXPECT_NEAR(grey.turn, -2.5, 0.1);
  EXPECT_GE(grey.turn_confidence, VORLANE_LIKELY);
  EXPECT_EQ(grey.page_width, 400);
  EXPECT_EQ(grey.page_height, 500);
  EXPECT_GE(grey.reason_count, 1);
  for (const int32_t format : kFormats) {
    for (const Layout layout : kLayouts) {
      const vorlane_finding found = Detect(Scan(2.5, format, layout));
      const vorlane_finding& expected = format <= VORLANE_BIT_DARK ? bits : grey;
      EXPECT_EQ(std::memcmp(&found, &expected, sizeof found), 0)
          << "format " << format << ", layout " << static_cast<int>(layout);
    }
  }
}

TEST(Detect, SaysThatNothingIsSeenAndNothingIsMadeOfIt) {
  Picture blank(300, 200, VORLANE_GREY8, Layout::kTight);
  blank.Draw([](int32_t, int32_t) { return Colour{90, 90, 90}; });
  const vorlane_finding finding = Detect(blank);
  EXPECT_EQ(finding.turn_confidence, VORLANE_REFUSED);
  ASSERT_GE(finding.reason_count, 1);
  EXPECT_STRNE(vorlane_reason_name(finding.reasons[0].code), "unknown");
  const vorlane_image image = blank.image();
  int32_t width = -1;
  int32_t height = -1;
  EXPECT_EQ(vorlane_result_size(&image, &finding, nullptr, &width, &height), VORLANE_NOT_CONFIDENT);
  EXPECT_EQ(width, -1);
}

TEST(Detect, AContextServesOneCallAtATime) {
  const Picture scan = Scan(1, VORLANE_GREY8, Layout::kTight);
  const vorlane_image image = scan.image();
  vorlane_finding finding = Detect(scan);
  std::vector<uint8_t> memory(600'000);
  vorlane_result result{memory.data(), 1000, 1000, 600};
  const Context context;
  context.get()->isBusy = true;
  EXPECT_EQ(vorlane_detect(context.get(), &image, nullptr, &finding), VORLANE_BUSY);
  EXPECT_EQ(vorlane_apply(context.get(), &image, &finding, nullptr, &result), VORLANE_BUSY);
  EXPECT_EQ(vorlane_context_trim(context.get()), VORLANE_BUSY);
  context.get()->isBusy = false;
  EXPECT_EQ(vorlane_apply(context.get(), &image, &finding, nullptr, &result), VORLANE_OK);
  EXPECT_EQ(vorlane_context_trim(context.get()), VORLANE_OK);
  EXPECT_EQ(vorlane_apply(context.get(), &image, &finding, nullptr, &result), VORLANE_OK);
}

// What a thread makes of all the scans: the findings and the bytes of the upright pages.
std::vector<uint8_t> WorkThrough(const std::vector<Picture>& scans) {
  const Context context;
  std::vector<uint8_t> all;
  for (const Picture& scan : scans) {
    const vorlane_image image = scan.image();
    vorlane_finding finding = EmptyFinding();
    vorlane_detect(context.get(), &image, nullptr, &finding);
    const auto* bytes = reinterpret_cast<const uint8_t*>(&finding);
    all.insert(all.end(), bytes, bytes + sizeof finding);

    std::vector<uint8_t> memory(2'000'000);
    vorlane_result result{memory.data(), 2000, 500, 1000};
    EXPECT_EQ(vorlane_apply(context.get(), &image, &finding, nullptr, &result), VORLANE_OK);
    all.insert(all.end(), memory.begin(), memory.end());
  }
  return all;
}

TEST(Detect, FourThreadsFindAndMakeWhatOneDoes) {
  std::vector<Picture> scans;
  for (const double degrees : {-7.0, -0.4, 1.3, 12.0}) {
    for (const int32_t format : kFormats) scans.push_back(Scan(degrees, format, Layout::kPadded));
  }
  const std::vector<uint8_t> alone = WorkThrough(scans);
  std::vector<uint8_t> made[4];
  std::vector<std::thread> threads;
  for (std::vector<uint8_t>& each : made) {
    threads.emplace_back([&] { each = WorkThrough(scans); });
  }
  for (std::thread& thread : threads) thread.join();
  for (const std::vector<uint8_t>& each : made) EXPECT_TRUE(each == alone);
}

}  // namespace
}  // namespace vorlane::testing
