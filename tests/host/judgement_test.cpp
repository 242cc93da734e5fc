// How far results are trusted, on pages that mislead the border search.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/run_command.h"
#include "host/threshold_choice.h"

namespace vorlanepic::testing {
namespace {

using ::testing::HasSubstr;

nlohmann::json Judged(const DrawnPage& page) {
  const WorkFolder folder;
  const TestImage image = DrawPage(page);
  folder.Write("page.png", {&image});
  return folder.Run("straighten page.png -o out.png --accept-doubtful --json").Objects().at(0);
}

TEST(JudgementTest, IsSureOfAPageInFullView) {
  for (const double degrees : {-20.0, -1.0, 0.0, 12.0}) {
    DrawnPage page;
    page.imageWidth = 1000;
    page.imageHeight = 1200;
    page.centerX = 500;
    page.centerY = 600;
    page.pageWidth = 600;
    page.pageHeight = 850;
    page.degrees = degrees;
    const nlohmann::json judged = Judged(page);
    EXPECT_EQ(judged["confidence"], "sure") << degrees << judged;
  }
}

TEST(JudgementTest, DoubtsThePictureEdgesTakenForBorders) {
  DrawnPage page;
  page.pageWidth = 460;  // runs off the picture left and right
  page.degrees = 1.8;
  const nlohmann::json judged = Judged(page);
  EXPECT_EQ(judged["confidence"], "doubtful") << judged;
  EXPECT_THAT(judged["reasons"].dump(), HasSubstr("leans"));
}

TEST(JudgementTest, WarnsOfSteepPages) {
  DrawnPage page;
  page.imageWidth = 1000;
  page.imageHeight = 1000;
  page.centerX = 500;
  page.centerY = 500;
  page.pageWidth = 500;
  page.pageHeight = 700;
  page.degrees = 38;
  const nlohmann::json judged = Judged(page);
  EXPECT_EQ(judged["confidence"], "likely") << judged;
  EXPECT_THAT(judged["reasons"].dump(), HasSubstr("quarter turn"));
}

// Half the pixels at 40, half at 200: any level from 40 to 199 parts them, the middle is taken.
TEST(SplitLevelTest, PartsDarkAndLight) {
  TestImage image(80, 80, 8);
  for (int32_t y = 0; y < 80; ++y) {
    for (int32_t x = 0; x < 80; ++x) image.Set(x, y, x < 40 ? 40 : 200);
  }
  EXPECT_EQ(host::SplitLevel(*image.rec()), 119);
  // The left margin alone would estimate (40 + 40 + 200 + 200) / 4 = 120: the ground is not dark.
  EXPECT_EQ(host::PageThreshold(*image.rec()), 120);
  image.Fill(30);
  EXPECT_EQ(host::PageThreshold(*image.rec()), 80);
}

}  // namespace
}  // namespace vorlanepic::testing
