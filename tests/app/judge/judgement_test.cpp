// How far results are trusted, on pages that mislead the border search.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "app/judge/threshold_choice.h"
#include "app/run_command.h"

namespace vorlane::testing {
namespace {

using ::testing::HasSubstr;

nlohmann::json Judged(const DrawnPage& page) {
  const WorkFolder folder;
  const TestImage image = DrawPage(page);
  folder.Write("page.png", {&image});
  return folder.Run("straighten page.png -o out.png --accept-doubtful --json").Objects().at(0);
}

TEST(JudgementTest, TrustsAPageInFullViewAndDoubtsTheRest) {
  const DrawnPage whole{.imageWidth = 1000,
                        .imageHeight = 1200,
                        .pageWidth = 600,
                        .pageHeight = 850,
                        .centerX = 500,
                        .centerY = 600};
  for (const double degrees : {-20.0, -1.0, 12.0}) {
    DrawnPage page = whole;
    page.degrees = degrees;
    EXPECT_EQ(Judged(page)["confidence"], "sure") << degrees;
  }
  DrawnPage steep = whole;
  steep.pageHeight = 700;
  steep.degrees = 38;
  const nlohmann::json likely = Judged(steep);
  EXPECT_EQ(likely["confidence"], "likely") << likely;
  EXPECT_THAT(likely["reasons"].dump(), HasSubstr("quarter turn"));
  // Runs off the picture left and right.
  const nlohmann::json doubtful = Judged({.pageWidth = 460, .degrees = 1.8});
  EXPECT_EQ(doubtful["confidence"], "doubtful") << doubtful;
  EXPECT_THAT(doubtful["reasons"].dump(), HasSubstr("leans"));
}

// Half the pixels at 40, half at 200: any level from 40 to 199 parts them, the middle is taken.
TEST(SplitLevelTest, PartsDarkAndLight) {
  TestImage image(80, 80, 8);
  FillRectangle(&image, 0, 0, 39, 79, 40);
  FillRectangle(&image, 40, 0, 79, 79, 200);
  EXPECT_EQ(judging::SplitLevel(*image.rec()), 119);
  // The left margin alone would estimate (40 + 40 + 200 + 200) / 4 = 120: the ground is not dark.
  EXPECT_EQ(judging::PageThreshold(*image.rec()), 120);
  image.Fill(30);
  EXPECT_EQ(judging::PageThreshold(*image.rec()), 80);
}

}  // namespace
}  // namespace vorlane::testing
