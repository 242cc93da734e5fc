// Image files to page images and back, and what happens to files that cannot be served.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <leptonica/allheaders.h>

#include "host/image_convert.h"
#include "host/output_plan.h"
#include "host/page_reader.h"
#include "host/run_command.h"

namespace vorlanepic::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

struct FormatCase {
  const char* name;
  const char* extension;
  int32_t bitsPerPixel;
  int32_t bitsRead;
  bool keepsDpi;
  bool isExact;
};

class FormatTest : public ::testing::TestWithParam<FormatCase> {};

TEST_P(FormatTest, KeepsPixelsDepthAndResolution) {
  const FormatCase& c = GetParam();
  const WorkFolder folder;
  TestImage page = SmallPage(c.bitsPerPixel, 3);
  if (c.bitsPerPixel == 24) page.row(5)[3 * 7] = 200;  // blue, so that a swap of channels shows
  const std::string name = std::string("page.") + c.extension;
  folder.Write(name, {&page}, 240);

  const std::vector<host::Page> read = folder.Read(name);
  ASSERT_EQ(read.size(), 1U);
  const ImageRec& image = *read[0].image.rec();
  EXPECT_EQ(image.bitsPerPixel, c.bitsRead);
  EXPECT_EQ(image.width, 400);
  EXPECT_EQ(image.height, 480);
  if (c.isExact) {
    EXPECT_TRUE(SamePixels(image, *page.rec()));
  }
  EXPECT_EQ(read[0].xDpi, c.keepsDpi ? 240 : 0);
  EXPECT_TRUE(read[0].notes.empty());
}

INSTANTIATE_TEST_SUITE_P(Formats, FormatTest,
                         ::testing::Values(FormatCase{"Tiff1", "tif", 1, 1, true, true},
                                           FormatCase{"Tiff8", "TIFF", 8, 8, true, true},
                                           FormatCase{"Tiff24", "tif", 24, 24, true, true},
                                           FormatCase{"Png1", "png", 1, 1, true, true},
                                           FormatCase{"Png8", "png", 8, 8, true, true},
                                           FormatCase{"Png24", "png", 24, 24, true, true},
                                           FormatCase{"Jpeg1IsGrey", "jpg", 1, 8, true, false},
                                           FormatCase{"Jpeg8", "jpeg", 8, 8, true, false},
                                           FormatCase{"Jpeg24", "jpg", 24, 24, true, false},
                                           FormatCase{"Bmp1", "bmp", 1, 1, true, true},
                                           FormatCase{"Bmp24", "bmp", 24, 24, true, true},
                                           FormatCase{"Pbm", "pbm", 1, 1, false, true},
                                           FormatCase{"Pgm", "pgm", 8, 8, false, true},
                                           FormatCase{"PpmOfGrey", "ppm", 8, 24, false, false},
                                           FormatCase{"Pnm24", "pnm", 24, 24, false, true}),
                         [](const auto& format) { return format.param.name; });

TEST(MultiPageTiffTest, JoinsPagesOfEveryDepthAndSize) {
  const WorkFolder folder;
  const TestImage bits = SmallPage(1, 0);
  const TestImage grey = SmallPage(8, 2);
  TestImage colour(37, 5000, 24);  // many strips
  for (int32_t y = 0; y < 5000; ++y) colour.Set(y % 37, y, static_cast<uint8_t>(y));
  folder.Write("all.tif", {&bits, &grey, &colour, &bits});

  const std::vector<host::Page> read = folder.Read("all.tif");
  ASSERT_EQ(read.size(), 4U);
  const TestImage* expected[] = {&bits, &grey, &colour, &bits};
  for (size_t i = 0; i < 4; ++i) {
    EXPECT_TRUE(SamePixels(*read[i].image.rec(), *expected[i]->rec())) << i;
    EXPECT_EQ(read[i].number, static_cast<int32_t>(i) + 1);
    EXPECT_EQ(read[i].xDpi, 200);
  }
}

struct ConversionCase {
  const char* name;
  int32_t depth;
  bool palette;
  bool coloured;
  int32_t bitsRead;
  const char* note;
};

class ConversionTest : public ::testing::TestWithParam<ConversionCase> {};

// A picture of 8 x 1 pixels with its largest value (palette entry 1: light) at x = 3.
TEST_P(ConversionTest, TellsWhatItConverted) {
  const ConversionCase& c = GetParam();
  host::PixPtr pix(pixCreate(8, 1, c.depth));
  if (c.palette) {
    PixColormap* table = pixcmapCreate(c.depth);
    pixcmapAddColor(table, 0, 0, 0);
    pixcmapAddColor(table, 255, 255, c.coloured ? 100 : 255);
    pixSetColormap(pix.get(), table);
    pixSetPixel(pix.get(), 3, 0, 1);
  } else {
    pixSetPixel(pix.get(), 3, 0, c.depth == 32 ? 0xFFFFFF00 : (1U << c.depth) - 1);
  }
  if (c.depth == 32) {
    pixSetSpp(pix.get(), 4);  // alpha 0 everywhere: all of it is blank paper
  }
  std::vector<std::string> notes;
  pix = host::ToServiceDepth(std::move(pix), &notes);
  ASSERT_TRUE(pix);
  ScratchImage image;
  ASSERT_EQ(host::PixToImage(pix, &image), 0);
  EXPECT_EQ(image.rec()->bitsPerPixel, c.bitsRead);
  const std::vector<uint8_t> grey = host::ToGreyBuffer(*image.rec());
  EXPECT_GT(grey[3], 200);
  EXPECT_EQ(grey[2], c.depth == 32 ? 255 : 0);
  if (c.note == nullptr) {
    EXPECT_TRUE(notes.empty());
  } else {
    ASSERT_EQ(notes.size(), 1U);
    EXPECT_THAT(notes[0], HasSubstr(c.note));
  }
}

INSTANTIATE_TEST_SUITE_P(
    Depths, ConversionTest,
    ::testing::Values(ConversionCase{"BlackAndWhitePalette", 1, true, false, 1, nullptr},
                      ConversionCase{"TwoColourPalette", 1, true, true, 24, "24-bit colour"},
                      ConversionCase{"GreyPalette", 4, true, false, 8, "4-bit palette of greys"},
                      ConversionCase{"ColourPalette", 8, true, true, 24, "8-bit palette"},
                      ConversionCase{"TwoBit", 2, false, false, 8, "2-bit"},
                      ConversionCase{"SixteenBit", 16, false, false, 8, "16-bit grey"},
                      ConversionCase{"Transparent", 32, false, false, 24, "laid on white"}),
    [](const auto& format) { return format.param.name; });

TEST(OutputPlanTest, NamesAFileForEveryPage) {
  const auto name = [](const char* output, const char* input, int32_t page, int32_t pages) {
    return host::OutputFor({output, ""}, input, page, pages);
  };
  EXPECT_EQ(name("out.png", "scan.tif", 1, 1), "out.png");
  EXPECT_EQ(name("out.png", "scan.tif", 2, 3), "out-p2.png");
  EXPECT_EQ(name("out.tif", "scan.tif", 2, 3), "out.tif");
  EXPECT_EQ(name("o/", "box/a.b.jpg", 1, 1), "o/a.b.jpg");
  EXPECT_EQ(name("o/", "photo.webp", 1, 1), "o/photo.png");
  EXPECT_EQ(name("{name}-{page}.{ext}", "box/scan.bmp", 7, 9), "scan-7.bmp");
  EXPECT_EQ(host::OutputFor({"o/", ".overlay.png"}, "scan.tif", 2, 3), "o/scan.overlay-p2.png");
}

TEST(BadInputTest, NamesTheFileAndGoesOn) {
  const WorkFolder folder;
  const TestImage page = SmallPage(8, 2);
  folder.Write("good.png", {&page});
  folder.Write("whole.jpg", {&page});
  folder.Write("whole.tif", {&page, &page});
  folder.WriteText("cut-png.png", folder.Bytes("good.png").substr(0, 900));
  folder.WriteText("cut-jpg.jpg", folder.Bytes("whole.jpg").substr(0, 3000));
  folder.WriteText("cut-tif.tif", folder.Bytes("whole.tif").substr(0, 1500));
  folder.WriteText("empty.tif", "");
  folder.WriteText("words.png", "these are no pixels at all\n");
  // 60000 x 60000 pixels, said in the header only.
  folder.WriteText("huge.pgm", "P5 60000 60000 255\n");
  std::filesystem::create_directory(folder.At("folder"));
  std::filesystem::create_directory(folder.At("out"));

  const char* bad[] = {"cut-png.png", "cut-jpg.jpg", "cut-tif.tif", "empty.tif",
                       "words.png",   "huge.pgm",    "folder",      "missing.tif"};
  std::string inputs;
  for (const char* name : bad) inputs += std::string(name) + " ";
  const CommandResult result = folder.Run("straighten " + inputs + "good.png -o out/{name}.png");
  EXPECT_EQ(result.exit, 3);
  for (const char* name : bad) EXPECT_THAT(result.err, HasSubstr(std::string(name) + ": "));
  EXPECT_THAT(result.err, HasSubstr("empty.tif: is empty"));
  EXPECT_THAT(result.err, HasSubstr("folder: is a folder"));
  EXPECT_THAT(result.err, HasSubstr("60000 x 60000"));
  EXPECT_THAT(result.out, HasSubstr("good.png: "));
  EXPECT_TRUE(folder.Has("out/good.png"));
  EXPECT_FALSE(folder.Has("out/cut-png.png"));
  EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 8) << result.err;
}

TEST(WriteErrorTest, LeavesNoPartOfAFile) {
  const WorkFolder folder;
  const TestImage page = SmallPage(24, 2);
  folder.Write("page.bmp", {&page});
  // Files may hold 20 blocks of 512 bytes, less than the result takes.
  const CommandResult full = folder.Run("--version >/dev/null; ulimit -f 20; " VORLANE_COMMAND
                                        " straighten page.bmp -o straight.bmp");
  EXPECT_EQ(full.exit, 3);
  EXPECT_THAT(full.err, HasSubstr("straight.bmp"));
  EXPECT_THAT(full.err, HasSubstr("nothing was written"));
  EXPECT_THAT(folder.Names(), ElementsAre("page.bmp"));

  const CommandResult noReport = folder.Run("angle page.bmp --method 1 >/dev/full; exit $?; true");
  EXPECT_EQ(noReport.exit, 3);
}

}  // namespace
}  // namespace vorlanepic::testing
