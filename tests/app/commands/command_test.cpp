// What each command does for its user: results, reports, exit codes, what it refuses to overwrite.
#include <cmath>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "app/run_command.h"

namespace vorlane::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::StartsWith;

class StraightenTest : public ::testing::TestWithParam<int32_t> {};

TEST_P(StraightenTest, TurnsThePageBackAtEveryDepth) {
  const WorkFolder folder;
  const TestImage page = SmallPage(GetParam(), 4);
  folder.Write("page.tif", {&page}, 150);
  const CommandResult result =
      folder.Run("straighten page.tif -o straight.tif --overlay seen.png --json");
  EXPECT_EQ(result.exit, 0) << result.err;
  EXPECT_EQ(result.err, "");

  const auto objects = result.Objects();
  ASSERT_EQ(objects.size(), 1U);
  EXPECT_EQ(objects[0]["result"], "straightened");
  EXPECT_EQ(objects[0]["confidence"], "sure");
  EXPECT_NEAR(objects[0]["angle"].get<double>(), -4, 0.2);
  EXPECT_EQ(objects[0]["overlay"], "seen.png");

  const auto straight = folder.Read("straight.tif");
  EXPECT_EQ(straight[0].image.rec()->bitsPerPixel, GetParam());
  EXPECT_NEAR(straight[0].image.rec()->width, 240, 6);
  EXPECT_NEAR(straight[0].image.rec()->height, 320, 6);
  EXPECT_EQ(straight[0].Dpi(), 150);
  EXPECT_EQ(objects[0]["newWidth"], straight[0].image.rec()->width);
  const auto overlay = folder.Read("seen.png");
  EXPECT_EQ(overlay[0].image.rec()->bitsPerPixel, 24);
  EXPECT_GT(overlay[0].image.rec()->height, 480);  // the page and its caption
}

INSTANTIATE_TEST_SUITE_P(Depths, StraightenTest, ::testing::Values(1, 8, 24));

TEST(StraightenTest, LeavesDoubtfulPagesUnlessAsked) {
  const WorkFolder folder;
  TestImage paper(300, 400, 8);  // paper to all edges: no border is seen
  paper.Fill(230);
  FillRectangle(&paper, 60, 200, 239, 200, 20);
  folder.Write("paper.png", {&paper});
  const CommandResult left = folder.Run("straighten paper.png -o out.png --threshold 100");
  EXPECT_EQ(left.exit, 1);
  EXPECT_THAT(left.out, HasSubstr("doubtful: no border of the page is seen"));
  EXPECT_FALSE(folder.Has("out.png"));

  EXPECT_EQ(folder.Run("straighten paper.png -o out.png --threshold 100 --accept-doubtful").exit,
            0);
  EXPECT_TRUE(folder.Has("out.png"));
}

TEST(StraightenTest, TriesThresholdsThatThePictureSuggests) {
  const WorkFolder folder;
  DrawnPage drawn;
  drawn.background = 120;  // above the estimate's least of 80, so the ground passes for page
  drawn.degrees = 3;
  TestImage page = DrawPage(drawn);
  for (const int32_t left : {0, 398}) {  // dark margins mislead it
    FillRectangle(&page, left, 0, left + 1, 499, 60);
  }
  folder.Write("grey.png", {&page});
  EXPECT_EQ(folder.Run("straighten grey.png -o out.png").exit, 1);
  const CommandResult tried = folder.Run("straighten grey.png -o out.png --try-thresholds --json");
  EXPECT_EQ(tried.exit, 0) << tried.out;
  const auto objects = tried.Objects();
  EXPECT_NEAR(objects[0]["angle"].get<double>(), -3, 0.2);
  EXPECT_THAT(objects[0]["notes"].dump(), HasSubstr("found by trying"));
}

TEST(MultiPageTest, KeepsEveryPageInItsPlace) {
  const WorkFolder folder;
  const TestImage first = SmallPage(1, 3);
  const TestImage nothing = DarkField();
  const TestImage last = SmallPage(8, -3);
  folder.Write("three.tif", {&first, &nothing, &last});
  const CommandResult result = folder.Run("straighten three.tif -o out.tif --json");
  EXPECT_EQ(result.exit, 1);
  const auto objects = result.Objects();
  ASSERT_EQ(objects.size(), 3U);
  EXPECT_EQ(objects[1]["page"], 2);
  EXPECT_EQ(objects[1]["status"], 496);
  const auto pages = folder.Read("out.tif");
  ASSERT_EQ(pages.size(), 3U);
  EXPECT_LT(pages[0].image.rec()->width, 260);
  EXPECT_TRUE(SamePixels(*pages[1].image.rec(), *nothing.rec()));
  EXPECT_EQ(pages[2].image.rec()->bitsPerPixel, 8);

  const CommandResult single =
      folder.Run("straighten three.tif -o 'single-{page}.png' --overlay seen/");
  EXPECT_EQ(single.exit, 1);
  EXPECT_THAT(single.out, HasSubstr(": FAILED, no page found: nothing in the picture"));
  EXPECT_TRUE(folder.Has("single-1.png"));
  EXPECT_FALSE(folder.Has("single-2.png"));
  EXPECT_TRUE(folder.Has("single-3.png"));
}

TEST(OverwriteTest, ReplacesNothingUnasked) {
  const WorkFolder folder;
  const TestImage page = SmallPage(8, 2);
  folder.Write("page.png", {&page});
  folder.WriteText("taken.png", "mine");
  const std::string before = folder.Bytes("page.png");

  const CommandResult taken = folder.Run("straighten page.png -o taken.png");
  EXPECT_EQ(taken.exit, 2);
  EXPECT_THAT(taken.err, HasSubstr("--overwrite"));
  EXPECT_EQ(folder.Bytes("taken.png"), "mine");
  EXPECT_EQ(folder.Run("straighten page.png -o ./page.png --overwrite").exit, 2);
  EXPECT_EQ(folder.Run("straighten page.png -o a.png --overlay page.png --overwrite").exit, 2);
  EXPECT_EQ(folder.Bytes("page.png"), before);
  EXPECT_THAT(folder.Names(), ElementsAre("page.png", "taken.png"));

  EXPECT_EQ(folder.Run("straighten page.png -o taken.png --overwrite").exit, 0);
  EXPECT_NE(folder.Bytes("taken.png"), "mine");
  EXPECT_EQ(folder.Run("straighten page.png -o page.png --overwrite-inputs").exit, 0);
  EXPECT_NE(folder.Bytes("page.png"), before);
}

TEST(UsageTest, RefusesWhatCannotBeCarriedOut) {
  const WorkFolder folder;
  const TestImage page = SmallPage(8, 2);
  folder.Write("page.png", {&page});
  folder.Write("other.png", {&page});
  const char* refused[] = {"",
                           "nonsense",
                           "straighten page.png",
                           "straighten page.png -o out.xyz",
                           "straighten page.png -o nowhere/out.png",
                           "straighten page.png other.png -o one.png",
                           "straighten page.png -o out.png --threshold 256",
                           "straighten page.png -o out.png --interpolation cubic",
                           "straighten page.png -o out.png --overlay seen.tif",
                           "straighten page.png -o /dev/full --overwrite",
                           "straighten page.png -o out.png --overlay out.png",
                           "crop page.png -o out.png --method 4",
                           "crop page.png -o out.png --segment-length 4",
                           "crop page.png -o out.png --fill '#12345'",
                           "crop page.png -o out.png --profile none.ini",
                           "blocks page.png --min-run 3",
                           "blocks page.png --order left --join-gap 2"};
  for (const char* arguments : refused) {
    const CommandResult result = folder.Run(arguments);
    EXPECT_EQ(result.exit, 2) << arguments;
    EXPECT_NE(result.err, "") << arguments;
  }
  EXPECT_THAT(folder.Names(), ElementsAre("other.png", "page.png"));
  EXPECT_THAT(folder.Run("--version").out, StartsWith("vorlane 1."));
  EXPECT_EQ(folder.Run("crop --help").exit, 0);
}

TEST(CropTest, MethodAndSettingsComeFromOptionsOrProfile) {
  const WorkFolder folder;
  const TestImage page = SmallPage(8, 5);
  folder.Write("page.png", {&page});
  const auto angle = [&](const std::string& arguments) {
    return folder.Run(arguments).Objects().at(0).value("angle", 99.0);
  };
  for (const std::string method : {"1", "2", "3"}) {
    const std::string name = "cut" + method + ".png";
    const double cut = angle("crop page.png -o " + name + " --json --method " + method);
    EXPECT_NEAR(cut, -5, 0.4) << method;
    EXPECT_NEAR(folder.Read(name)[0].image.rec()->width, 240, 8) << method;
    EXPECT_EQ(angle("angle page.png --json --method " + method), cut) << method;
    folder.WriteText("chosen.ini", "[ImageDeskew]\nDeskewMethod = " + method + "\n");
    EXPECT_EQ(angle("angle page.png --json --profile chosen.ini"), cut) << method;
  }
  folder.WriteText("bad.ini", "[ImageDeskew2]\nSegmentLen = 99\n");
  const CommandResult bad = folder.Run("angle page.png --profile bad.ini");
  EXPECT_EQ(bad.exit, 1);
  EXPECT_THAT(bad.out, HasSubstr("out of range"));
}

TEST(CropTest, OneGeometryCutsAllPagesAlike) {
  const WorkFolder folder;
  const TestImage measured = SmallPage(8, 4);
  TestImage nothing(400, 480, 8);
  nothing.Fill(140);
  folder.Write("set.tif", {&measured, &nothing});
  const CommandResult result = folder.Run("crop set.tif --one-geometry -o out.tif --method 2");
  EXPECT_EQ(result.exit, 0) << result.out << result.err;
  const auto pages = folder.Read("out.tif");
  ASSERT_EQ(pages.size(), 2U);
  EXPECT_EQ(pages[0].image.rec()->width, pages[1].image.rec()->width);
  EXPECT_NEAR(pages[1].image.rec()->rows[100][100], 140, 2);
}

// A bar of 216 x 5 pixels: at 70 dots per inch it is at least 210 along its diagonal, 1 to 7 thick.
TEST(FormTest, TurnsTheBarLevel) {
  const WorkFolder folder;
  const TestImage sheet = DrawBarSheet({.page = {.imageWidth = 500,
                                                 .imageHeight = 500,
                                                 .pageWidth = 400,
                                                 .pageHeight = 400,
                                                 .centerX = 250,
                                                 .degrees = 3},
                                        .barLength = 216,
                                        .barThickness = 5});
  folder.Write("sheet.png", {&sheet}, 70);
  const CommandResult angle = folder.Run("bar-angle sheet.png --json --overlay bar.png");
  EXPECT_EQ(angle.exit, 0) << angle.out;
  EXPECT_NEAR(angle.Objects()[0]["sheetAngle"].get<double>(), 3, 0.3);
  EXPECT_EQ(angle.Objects()[0]["minLength"], 210);
  EXPECT_TRUE(folder.Has("bar.png"));

  const CommandResult form =
      folder.Run("form sheet.png -o form.png --json --overlay form-bar.png --crop-pixel-count 80");
  EXPECT_EQ(form.exit, 0) << form.out;
  EXPECT_NEAR(form.Objects()[0]["angle"].get<double>(), -3, 0.3);
  const auto again = folder.Run("bar-angle form.png --json").Objects()[0]["sheetAngle"];
  EXPECT_LT(std::abs(again.get<double>()), 0.3);

  const CommandResult none = folder.Run("bar-angle sheet.png --min-length 300");
  EXPECT_EQ(none.exit, 1);
  EXPECT_THAT(none.out, HasSubstr("no reference bar found"));
}

// Dark squares at (10, 40) and (60, 12) of 5 x 5 pixels.
TEST(BlocksTest, ListsBlocksInTheOrderAskedFor) {
  TestImage image(100, 80, 8);
  image.Fill(220);
  FillRectangle(&image, 10, 40, 14, 44, 10);
  FillRectangle(&image, 60, 12, 64, 16, 30);
  const WorkFolder folder;
  folder.Write("squares.png", {&image});
  const CommandResult csv = folder.Run("blocks squares.png --csv --threshold 100");
  EXPECT_EQ(csv.exit, 0);
  EXPECT_EQ(csv.out,
            "file,page,block,left,top,right,bottom,width,height,area,centerX,centerY,minLevel,"
            "maxLevel\n"
            "\"squares.png\",1,0,60,12,64,16,5,5,25,62,14,30,30\n"
            "\"squares.png\",1,1,10,40,14,44,5,5,25,12,42,10,10\n");
  const auto blocks = [&](const std::string& options) {
    return folder.Run("blocks squares.png --json " + options).Objects().at(0)["blocks"];
  };
  EXPECT_EQ(blocks("--order left --overlay seen.png").at(0)["left"], 10);
  EXPECT_TRUE(folder.Has("seen.png"));
  EXPECT_EQ(blocks("--rect 0,30,50,40").size(), 1U);
  EXPECT_EQ(blocks("--nonzero").size(), 1U);
  EXPECT_EQ(folder.Run("blocks squares.png --rect 200,0,10,10").exit, 3);
}

}  // namespace
}  // namespace vorlane::testing
