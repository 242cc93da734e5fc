// What each command does for its user: results, reports, exit codes, what it refuses to overwrite.
#include <cmath>
#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "app/run_command.h"

namespace vorlane::testing {
namespace {

using ::testing::Contains;
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
  EXPECT_NEAR(straight[0].image.rec()->width, 240, 8);
  EXPECT_NEAR(straight[0].image.rec()->height, 320, 8);
  EXPECT_EQ(straight[0].Dpi(), 150);
  EXPECT_EQ(objects[0]["newWidth"], straight[0].image.rec()->width);
  const auto overlay = folder.Read("seen.png");
  EXPECT_EQ(overlay[0].image.rec()->bitsPerPixel, 24);
  EXPECT_GT(overlay[0].image.rec()->height, 480);  // the page and its caption
}

INSTANTIATE_TEST_SUITE_P(Depths, StraightenTest, ::testing::Values(1, 8, 24));

// Steeper than allowed is the doubt that needs no picture of its own.
TEST(StraightenTest, LeavesDoubtfulPagesUnlessAsked) {
  const WorkFolder folder;
  const TestImage page = SmallPage(8, 4);
  folder.Write("page.png", {&page});
  const std::string command = "straighten page.png --max-angle 3 -o out.png --unsure skip";
  const CommandResult left = folder.Run(command + " --strict");
  EXPECT_EQ(left.exit, 1);
  EXPECT_THAT(left.out, HasSubstr("LEFT AS IT IS, -4.0"));
  EXPECT_THAT(left.out, HasSubstr("steeper than asked for"));
  EXPECT_FALSE(folder.Has("out.png"));
  for (const std::string word : {"--accept-doubtful", "--min-confidence doubtful --overwrite"}) {
    EXPECT_EQ(folder.Run(command + " --strict " + word).exit, 0) << word;
  }
  EXPECT_NEAR(folder.Read("out.png")[0].image.rec()->width, 240, 6);
}

struct KeptCase {
  const char* options;
  double width;  // of the result
};

// The page is 240 x 320, the picture 400 x 480: whole, at 4 degrees, it is 432 wide.
TEST(StraightenTest, KeepsWhatIsAskedFor) {
  const WorkFolder folder;
  const TestImage page = SmallPage(8, 4);
  folder.Write("page.png", {&page}, 0);
  const KeptCase cases[] = {{"", 244},
                            {"--margin 20", 284},
                            {"--margin=-10px", 224},
                            {"--margin 2mm --dpi 254", 284},
                            {"--margin 2.54mm", 304},
                            {"--crop none", 432},
                            {"--by paper --fill '#102030'", 244}};
  for (const auto& [options, width] : cases) {
    const CommandResult result =
        folder.Run("straighten page.png -o out.png --overwrite --json " + std::string(options));
    const auto object = result.Objects().at(0);
    EXPECT_NEAR(object.value("newWidth", 0), width, 4) << options << result.out << result.err;
  }
}

// Corners of a page of 240 x 320 about (200, 240), turned by 4 degrees.
TEST(DetectTest, TellsHowThePageLies) {
  const WorkFolder folder;
  const TestImage page = SmallPage(24, 4);
  folder.Write("page.png", {&page});
  const CommandResult result = folder.Run("detect page.png --json --overlay seen.png");
  EXPECT_EQ(result.exit, 0) << result.err;
  EXPECT_THAT(folder.Names(), ElementsAre("page.png", "seen.png"));
  const auto found = result.Objects().at(0);
  EXPECT_EQ(found["result"], "measured");
  EXPECT_EQ(found["confidence"], "sure");
  EXPECT_EQ(found["cutConfidence"], "sure");
  EXPECT_EQ(found["depth"], 24);
  EXPECT_GT(found["expected"], 0.5);
  EXPECT_EQ(found["reasons"].at(0)["code"], "sides-agree");
  EXPECT_EQ(found["reasons"].at(0)["value"], 4);
  for (const char* side : {"top", "right", "bottom", "left"}) {
    EXPECT_THAT(found["by"].get<std::vector<std::string>>(), Contains(side));
    EXPECT_NEAR(found["evidence"][side]["angle"].get<double>(), found["angle"], 0.3) << side;
  }
  constexpr double kTruth[4][2] = {{91.5, 72.0}, {330.9, 88.7}, {308.5, 408.0}, {69.1, 391.3}};
  for (size_t i = 0; i < 4; ++i) {
    EXPECT_NEAR(found["corners"][i][0].get<double>(), kTruth[i][0], 5) << i;
    EXPECT_NEAR(found["corners"][i][1].get<double>(), kTruth[i][1], 5) << i;
  }
}

// Decisions and edits of a report count, and an input that changed since is an error.
TEST(ApplyTest, MakesThePagesOfAReport) {
  const WorkFolder folder;
  const TestImage page = SmallPage(8, 4);
  folder.Write("a.png", {&page});
  folder.Write("b.png", {&page});
  folder.WriteText("found.jsonl", folder.Run("detect a.png b.png --json").out);
  EXPECT_EQ(folder.Run("straighten a.png -o straight.png").exit, 0);
  EXPECT_EQ(folder
                .Shell("sed -i '2s/\"page\"/\"decision\":\"leave\",&/; "
                       "3s/\"angle\":[-0-9.]*/\"angle\":0/' found.jsonl")
                .exit,
            0);
  const CommandResult made = folder.Run("apply found.jsonl -o out/");
  EXPECT_EQ(made.exit, 0) << made.err;
  const auto straight = folder.Read("straight.png");
  const auto applied = folder.Read("out/a.png");
  EXPECT_NEAR(applied[0].image.rec()->width, straight[0].image.rec()->width, 1);
  EXPECT_NEAR(applied[0].image.rec()->height, straight[0].image.rec()->height, 1);
  EXPECT_TRUE(folder.Bytes("out/b.png") == folder.Bytes("b.png"));

  // Decisions beside the report change the pages that they name and no others.
  folder.WriteText(
      "some.jsonl",
      R"({"file":"b.png","page":1,"angle":0,"corners":[[8.5,9],[58.5,9],[58.5,39],[8.5,39]]})");
  EXPECT_EQ(folder.Run("apply found.jsonl --decisions some.jsonl -o some/").exit, 0);
  EXPECT_TRUE(folder.Bytes("some/a.png") == folder.Bytes("out/a.png"));
  EXPECT_EQ(folder.Read("some/b.png")[0].image.rec()->width, 50);
  for (const auto& [number, words] :
       {std::pair{"2", "the report does not tell of page 2"},
        std::pair{"92233720368547758081", "no whole number"}, std::pair{"1.5", "no whole number"},
        std::pair{"-1", "no whole number"}}) {
    folder.WriteText("some.jsonl",
                     std::string(R"({"file":"b.png","decision":"leave","page":)") + number + "}");
    const CommandResult unknown = folder.Run("apply found.jsonl --decisions some.jsonl -o none/");
    EXPECT_EQ(unknown.exit, 2);
    EXPECT_THAT(unknown.err, HasSubstr("some.jsonl: line 1: "));
    EXPECT_THAT(unknown.err, HasSubstr(words));
  }

  // The line that a killed run was writing; one that is torn elsewhere is no report's.
  folder.WriteText("torn.jsonl", folder.Bytes("found.jsonl") + R"({"file":"c.pn)");
  const CommandResult torn = folder.Run("apply torn.jsonl -o torn/");
  EXPECT_EQ(torn.exit, 0);
  EXPECT_THAT(torn.err, HasSubstr("torn.jsonl: its last line is torn and is left out"));
  EXPECT_TRUE(folder.Bytes("torn/a.png") == folder.Bytes("out/a.png"));
  folder.WriteText("torn.jsonl", "{\"file\":\"c.pn\n" + folder.Bytes("found.jsonl"));
  EXPECT_EQ(folder.Run("apply torn.jsonl -o bad/").exit, 2);

  std::filesystem::remove(folder.At("a.png"));
  folder.Write("a.png", {&page, &page}, 300);
  const CommandResult changed = folder.Run("apply found.jsonl -o again/");
  EXPECT_EQ(changed.exit, 3);
  EXPECT_THAT(changed.err, HasSubstr("a.png"));
  EXPECT_FALSE(folder.Has("again/a.png"));
}

TEST(DetectTest, SaysWhyThereIsNoAnswer) {
  const WorkFolder folder;
  const TestImage nothing = DarkField();
  folder.Write("dark.png", {&nothing});
  const CommandResult result = folder.Run("detect dark.png --json");
  EXPECT_EQ(result.exit, 1);
  const auto found = result.Objects().at(0);
  EXPECT_EQ(found["result"], "refused");
  EXPECT_EQ(found["confidence"], "refused");
  EXPECT_EQ(found["reasons"].at(0)["code"], "no-contrast");
  EXPECT_FALSE(found.contains("angle"));
}

TEST(PrunedTest, TriesThresholdsThatThePictureSuggests) {
  const WorkFolder folder;
  DrawnPage drawn;
  drawn.background = 120;  // above the estimate's least of 80, so the ground passes for page
  drawn.degrees = 3;
  TestImage page = DrawPage(drawn);
  for (const int32_t left : {0, 398}) {  // dark margins mislead it
    FillRectangle(&page, left, 0, left + 1, 499, 60);
  }
  folder.Write("grey.png", {&page});
  EXPECT_EQ(folder.Run("pruned grey.png -o out.png --unsure skip --strict").exit, 1);
  const CommandResult tried =
      folder.Run("pruned grey.png -o out.png --try-thresholds --strict --json");
  EXPECT_EQ(tried.exit, 0) << tried.out;
  const auto objects = tried.Objects();
  EXPECT_NEAR(objects[0]["angle"].get<double>(), -3, 0.2);
  EXPECT_THAT(objects[0]["notes"].dump(), HasSubstr("found by trying"));
}

// A page that runs off the picture on both sides comes out of the pruned rotation at half its skew.
TEST(PrunedTest, IsNotTrustedAgainstThePagesOwnSides) {
  const WorkFolder folder;
  const TestImage page = DrawPage({.pageWidth = 460, .degrees = 1.8, .text = true});
  folder.Write("wide.png", {&page});
  const auto object = folder.Run("pruned wide.png -o out.png --json").Objects().at(0);
  EXPECT_GT(std::abs(object["angle"].get<double>() + 1.8), 0.5);
  EXPECT_EQ(object["result"], "doubtful") << object;
}

TEST(MultiPageTest, KeepsEveryPageInItsPlace) {
  const WorkFolder folder;
  const TestImage first = SmallPage(1, 3);
  const TestImage nothing = DarkField();
  const TestImage last = SmallPage(8, -3);
  folder.Write("three.tif", {&first, &nothing, &last});
  const CommandResult result = folder.Run("straighten three.tif -o out.tif --json --strict");
  EXPECT_EQ(result.exit, 1);
  const auto objects = result.Objects();
  ASSERT_EQ(objects.size(), 3U);
  EXPECT_EQ(objects[1]["page"], 2);
  EXPECT_EQ(objects[1]["confidence"], "refused");
  const auto pages = folder.Read("out.tif");
  ASSERT_EQ(pages.size(), 3U);
  EXPECT_LT(pages[0].image.rec()->width, 260);
  EXPECT_TRUE(SamePixels(*pages[1].image.rec(), *nothing.rec()));
  EXPECT_EQ(pages[2].image.rec()->bitsPerPixel, 8);

  const CommandResult single =
      folder.Run("straighten three.tif -o 'single-{page}.png' --overlay seen/");
  EXPECT_EQ(single.exit, 0);
  EXPECT_THAT(single.out, HasSubstr("REFUSED, the picture has no contrast"));
  EXPECT_TRUE(folder.Has("single-1.png"));
  EXPECT_TRUE(folder.Has("single-2.png"));  // a copy
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
                           "straighten page.png -o out.png --margin 2cm",
                           "straighten page.png -o out.png --by sides",
                           "straighten page.png -o out.png --max-angle 46",
                           "pruned page.png -o out.png --threshold 256",
                           "straighten page.png -o out.png --interpolation cubic",
                           "straighten page.png -o out.png --overlay seen.tif",
                           "straighten page.png -o /dev/full --overwrite",
                           "straighten page.png -o out.png --overlay out.png",
                           "crop page.png -o out.png --method 4",
                           "crop page.png -o out.png --segment-length 4",
                           "crop page.png -o out.png --fill '#12345'",
                           "crop page.png -o out.png --profile none.ini",
                           "crop page.png -o out.png --method 3 --corner 2",
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
}

struct ProfileCase {
  std::string text;
  const char* words;  // of the refusal
};

TEST(ProfileTest, RefusesWhatWouldBePassedOver) {
  const WorkFolder folder;
  const TestImage page = SmallPage(8, 2);
  folder.Write("page.png", {&page});
  const std::string section = "[ImageDeskew2]\n";
  const ProfileCase cases[] = {
      {section + "SegmentLen = 99\n",
       "SegmentLen of section [ImageDeskew2]: 99 is out of range, 5"},
      {section + "SegmentLen = ten\n", "line 2: SegmentLen"},
      {section + "SegmentLen = 5.5\n", "no whole number"},
      {section + "GroupAngle = 2.55\n", "more than three characters"},
      {section + "GroupAngle = 1+\n  .5\nPixelNum = 21\n", "line 4: PixelNum"},
      {section + "DeskewMetod = 1\n", "no key \"DeskewMetod\""},
      {section + "SegmentLen\n", "is no KEY = VALUE"},
      {section + "SegmentLen = 8\nSegmentLen = 9\n", "stands twice"},
      {section + section, "stands twice"},
      {"[Other]\n", "no section [Other]"},
      {"SegmentLen = 9\n", "before the first section"},
      {"; mine\n" + section, "comments begin with #"},
      {"\xEF\xBB\xBF" + section, "UTF-8 mark"},
      {section + "#" + std::string(4096, 'x') + "\n", "longer than 4095"},
      {std::string((1 << 20) + 1, '\n'), "longer than 1 MB"}};
  for (const auto& [text, words] : cases) {
    folder.WriteText("profile.ini", text);
    const CommandResult result = folder.Run("angle page.png --profile profile.ini");
    EXPECT_EQ(result.exit, 2) << words;
    EXPECT_THAT(result.err, HasSubstr(words));
  }
  folder.WriteText("profile.ini", section + "# all is well\n\tGroupAngle =1+\n  .5\n");
  EXPECT_EQ(folder.Run("angle page.png --profile profile.ini").exit, 0);
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
