// What each command does for its user: results, reports, exit codes, what it refuses to overwrite.
#include <cmath>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/run_command.h"

namespace vorlanepic::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;
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
  EXPECT_EQ(straight[0].xDpi, 150);
  EXPECT_EQ(objects[0]["newWidth"], straight[0].image.rec()->width);
  const auto overlay = folder.Read("seen.png");
  EXPECT_EQ(overlay[0].image.rec()->bitsPerPixel, 24);
  EXPECT_GT(overlay[0].image.rec()->height, 480);  // the page and its caption
}

INSTANTIATE_TEST_SUITE_P(Depths, StraightenTest, ::testing::Values(1, 8, 24));

TEST(StraightenTest, ReportsPagesWithoutDocumentAndGoesOn) {
  const WorkFolder folder;
  const TestImage page = SmallPage(8, -2);
  const TestImage nothing = DarkField();
  folder.Write("a.png", {&nothing});
  folder.Write("b.png", {&page});
  const CommandResult result = folder.Run("straighten a.png b.png -o out/ --overlay seen/");
  EXPECT_EQ(result.exit, 1);
  EXPECT_THAT(result.out, StartsWith("a.png: FAILED, no page found: nothing in the picture"));
  EXPECT_THAT(result.out, HasSubstr("\nb.png: +"));
  EXPECT_FALSE(folder.Has("out/a.png"));
  EXPECT_TRUE(folder.Has("out/b.png"));
  EXPECT_TRUE(folder.Has("seen/a.overlay.png"));
}

TEST(StraightenTest, LeavesDoubtfulPagesUnlessAsked) {
  const WorkFolder folder;
  TestImage paper(300, 400, 8);  // paper to all edges: no border is seen
  paper.Fill(230);
  for (int32_t x = 60; x < 240; ++x) paper.Set(x, 200, 20);
  folder.Write("paper.png", {&paper});
  const CommandResult left = folder.Run("straighten paper.png -o out.png --threshold 100");
  EXPECT_EQ(left.exit, 1);
  EXPECT_THAT(left.out, HasSubstr("LEFT AS IT IS"));
  EXPECT_THAT(left.out, HasSubstr("doubtful: no border of the page is seen"));
  EXPECT_FALSE(folder.Has("out.png"));

  const CommandResult taken =
      folder.Run("straighten paper.png -o out.png --threshold 100 --accept-doubtful");
  EXPECT_EQ(taken.exit, 0);
  EXPECT_TRUE(folder.Has("out.png"));
}

TEST(StraightenTest, TriesThresholdsThatThePictureSuggests) {
  const WorkFolder folder;
  DrawnPage drawn;
  drawn.background = 120;  // above the estimate's least of 80, so the ground passes for page
  drawn.degrees = 3;
  TestImage page = DrawPage(drawn);
  for (int32_t y = 0; y < 500; ++y) {
    for (const int32_t x : {0, 1, 398, 399}) page.Set(x, y, 60);  // dark margins mislead it
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
  EXPECT_EQ(objects[1]["unchanged"], true);
  const auto pages = folder.Read("out.tif");
  ASSERT_EQ(pages.size(), 3U);
  EXPECT_LT(pages[0].image.rec()->width, 260);
  EXPECT_TRUE(SamePixels(*pages[1].image.rec(), *nothing.rec()));
  EXPECT_EQ(pages[2].image.rec()->bitsPerPixel, 8);

  EXPECT_EQ(folder.Run("straighten three.tif -o 'single-{page}.png'").exit, 1);
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

TEST(CropTest, EveryMethodCutsThePage) {
  const WorkFolder folder;
  const TestImage page = SmallPage(8, 5);
  folder.Write("page.png", {&page});
  for (const char* method : {"1", "2", "3"}) {
    const std::string name = std::string("cut") + method + ".png";
    const CommandResult cut = folder.Run("crop page.png -o " + name + " --json --method " + method);
    EXPECT_EQ(cut.exit, 0) << cut.out << cut.err;
    const double angle = cut.Objects()[0]["angle"].get<double>();
    EXPECT_NEAR(angle, -5, 0.4) << method;
    EXPECT_NEAR(folder.Read(name)[0].image.rec()->width, 240, 8) << method;

    const CommandResult measured =
        folder.Run(std::string("angle page.png --json --method ") + method);
    EXPECT_EQ(measured.exit, 0);
    EXPECT_EQ(measured.Objects()[0]["angle"].get<double>(), angle) << method;
    EXPECT_EQ(measured.Objects()[0]["result"], "measured");
  }
}

TEST(CropTest, ProfileChoosesMethodAndSettings) {
  const WorkFolder folder;
  const TestImage page = SmallPage(8, 5);
  folder.Write("page.png", {&page});
  folder.WriteText("one.ini", "[ImageDeskew]\nDeskewMethod = 1\n");
  folder.WriteText("bad.ini", "[ImageDeskew2]\nSegmentLen = 99\n");
  const auto angle = [&](const std::string& arguments) {
    return folder.Run("angle page.png --json " + arguments).Objects()[0].value("angle", 99.0);
  };
  EXPECT_EQ(angle("--profile one.ini"), angle("--method 1"));
  const CommandResult bad = folder.Run("angle page.png --profile bad.ini");
  EXPECT_EQ(bad.exit, 1);
  EXPECT_THAT(bad.out, HasSubstr("out of range"));
}

TEST(CropTest, OneGeometryCutsAllPagesAlike) {
  const WorkFolder folder;
  const TestImage measured = SmallPage(8, 4);
  const TestImage nothing = [] {
    TestImage image(400, 480, 8);
    image.Fill(140);
    return image;
  }();
  folder.Write("set.tif", {&measured, &nothing});
  for (const char* method : {"1", "2"}) {
    const std::string name = std::string("out") + method + ".tif";
    const CommandResult result =
        folder.Run("crop set.tif --one-geometry -o " + name + " --method " + method);
    EXPECT_EQ(result.exit, 0) << result.out << result.err;
    const auto pages = folder.Read(name);
    ASSERT_EQ(pages.size(), 2U);
    EXPECT_EQ(pages[0].image.rec()->width, pages[1].image.rec()->width);
    EXPECT_NEAR(pages[1].image.rec()->rows[100][100], 140, 2);
  }
}

// A sheet on a dark ground with a bar of 216 x 5 pixels. At 70 dots per inch a bar is at least 210
// pixels along its diagonal and 1 to 7 thick.
TestImage BarSheet(double degrees) {
  DrawnBarSheet sheet;
  sheet.page.imageWidth = 500;
  sheet.page.imageHeight = 500;
  sheet.page.pageWidth = 400;
  sheet.page.pageHeight = 400;
  sheet.page.centerX = 250;
  sheet.page.centerY = 250;
  sheet.page.degrees = degrees;
  sheet.barLength = 216;
  sheet.barThickness = 5;
  return DrawBarSheet(sheet);
}

TEST(FormTest, TurnsTheBarLevel) {
  const WorkFolder folder;
  const TestImage sheet = BarSheet(3);
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
  const CommandResult level = folder.Run("bar-angle form.png");
  EXPECT_THAT(level.out, HasSubstr("sheet turned"));
  const auto again = folder.Run("bar-angle form.png --json").Objects()[0]["sheetAngle"];
  EXPECT_LT(std::abs(again.get<double>()), 0.3);

  const CommandResult none = folder.Run("bar-angle sheet.png --min-length 300");
  EXPECT_EQ(none.exit, 1);
  EXPECT_THAT(none.out, HasSubstr("no reference bar found"));
}

// Dark squares at (10, 40) and (60, 12) of 5 x 5 pixels.
TestImage TwoSquares() {
  TestImage image(100, 80, 8);
  image.Fill(220);
  for (int32_t y = 0; y < 5; ++y) {
    for (int32_t x = 0; x < 5; ++x) {
      image.Set(10 + x, 40 + y, 10);
      image.Set(60 + x, 12 + y, 30);
    }
  }
  return image;
}

TEST(BlocksTest, ListsBlocksInTheOrderAskedFor) {
  const WorkFolder folder;
  const TestImage image = TwoSquares();
  folder.Write("squares.png", {&image});
  const CommandResult csv = folder.Run("blocks squares.png --csv --threshold 100");
  EXPECT_EQ(csv.exit, 0);
  EXPECT_EQ(csv.out,
            "file,page,block,left,top,right,bottom,width,height,area,centerX,centerY,minLevel,"
            "maxLevel\n"
            "\"squares.png\",1,0,60,12,64,16,5,5,25,62,14,30,30\n"
            "\"squares.png\",1,1,10,40,14,44,5,5,25,12,42,10,10\n");
  const auto ordered =
      folder.Run("blocks squares.png --json --order left --overlay seen.png").Objects();
  ASSERT_EQ(ordered[0]["blocks"].size(), 2U);
  EXPECT_EQ(ordered[0]["blocks"][0]["left"], 10);
  EXPECT_TRUE(folder.Has("seen.png"));
  const auto part = folder.Run("blocks squares.png --json --rect 0,30,50,40").Objects();
  EXPECT_EQ(part[0]["blocks"].size(), 1U);
  const auto nonZero = folder.Run("blocks squares.png --json --nonzero").Objects();
  EXPECT_EQ(nonZero[0]["blocks"].size(), 1U);
  EXPECT_THAT(folder.Run("blocks squares.png").out, HasSubstr("2 blocks"));
  EXPECT_EQ(folder.Run("blocks squares.png --rect 200,0,10,10").exit, 3);
}

}  // namespace
}  // namespace vorlanepic::testing
