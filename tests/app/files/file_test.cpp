// Image files to page images and back, and what happens to files that cannot be served.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <leptonica/allheaders.h>

#include "app/batch/output_names.h"
#include "app/files/image_convert.h"
#include "app/run_command.h"

namespace vorlane::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

TEST(FormatTest, KeepsPixelsDepthAndResolution) {
  struct Case {
    const char* name;
    int32_t bitsPerPixel;
    int32_t bitsRead;
    bool keepsDpi;
    bool isExact;
  };
  const WorkFolder folder;
  for (const Case& c : {Case{"24.TIFF", 24, 24, true, true}, Case{"1.png", 1, 1, true, true},
                        Case{"8.png", 8, 8, true, true}, Case{"24.png", 24, 24, true, true},
                        Case{"1.jpg", 1, 8, true, false}, Case{"24.jpeg", 24, 24, true, false},
                        Case{"1.bmp", 1, 1, true, true}, Case{"24.bmp", 24, 24, true, true},
                        Case{"1.pbm", 1, 1, false, true}, Case{"8.ppm", 8, 24, false, false},
                        Case{"24.pnm", 24, 24, false, true}}) {
    TestImage page = SmallPage(c.bitsPerPixel, 3);
    if (c.bitsPerPixel == 24) page.row(5)[3 * 7] = 200;  // blue, so that a swap of channels shows
    folder.Write(c.name, {&page}, 240);
    const std::vector<files::Page> read = folder.Read(c.name);
    ASSERT_EQ(read.size(), 1U) << c.name;
    const ImageRec& image = *read[0].image.rec();
    EXPECT_EQ(image.bitsPerPixel, c.bitsRead) << c.name;
    EXPECT_TRUE(!c.isExact || SamePixels(image, *page.rec())) << c.name;
    EXPECT_EQ(read[0].Dpi(), c.keepsDpi ? 240 : 0) << c.name;
    EXPECT_TRUE(read[0].notes.empty()) << c.name;
  }
}

TEST(MultiPageTiffTest, JoinsPagesOfEveryDepthAndSize) {
  const WorkFolder folder;
  const TestImage bits = SmallPage(1, 0);
  const TestImage grey = SmallPage(8, 2);
  TestImage colour(37, 5000, 24);  // many strips
  for (int32_t y = 0; y < 5000; ++y) colour.Set(y % 37, y, static_cast<uint8_t>(y));
  folder.Write("all.tif", {&bits, &grey, &colour});

  const std::vector<files::Page> read = folder.Read("all.tif");
  const TestImage* expected[] = {&bits, &grey, &colour};
  ASSERT_EQ(read.size(), 3U);
  for (size_t i = 0; i < 3; ++i) {
    EXPECT_TRUE(SamePixels(*read[i].image.rec(), *expected[i]->rec())) << i;
    EXPECT_EQ(read[i].number, static_cast<int32_t>(i) + 1);
    EXPECT_EQ(read[i].Dpi(), 200);
  }
}

// A picture of 8 x 1 pixels with its largest value (palette entry 1: light) at x = 3.
files::PixPtr SmallPix(int32_t depth, bool hasPalette, bool isColoured) {
  files::PixPtr pix(pixCreate(8, 1, depth));
  l_uint32 largest = depth == 32 ? 0xFFFFFF00 : (1U << depth) - 1;
  if (hasPalette) {
    PixColormap* table = pixcmapCreate(depth);
    pixcmapAddColor(table, 0, 0, 0);
    pixcmapAddColor(table, 255, 255, isColoured ? 100 : 255);
    pixSetColormap(pix.get(), table);
    largest = 1;
  }
  pixSetPixel(pix.get(), 3, 0, largest);
  if (depth == 32) pixSetSpp(pix.get(), 4);  // alpha 0 everywhere: all of it is blank paper
  return pix;
}

TEST(ConversionTest, TellsWhatItConverted) {
  struct Case {
    int32_t depth;
    bool hasPalette;
    bool isColoured;
    int32_t bitsRead;
    const char* note;
  };
  for (const Case& c :
       {Case{1, true, false, 1, ""}, Case{1, true, true, 24, "24-bit colour"},
        Case{4, true, false, 8, "4-bit palette of greys"}, Case{8, true, true, 24, "8-bit palette"},
        Case{2, false, false, 8, "2-bit"}, Case{16, false, false, 8, "16-bit grey"},
        Case{32, false, false, 24, "laid on white"}}) {
    std::vector<std::string> notes;
    const files::PixPtr pix =
        files::ToServiceDepth(SmallPix(c.depth, c.hasPalette, c.isColoured), &notes);
    ASSERT_TRUE(pix);
    files::PagePixels image;
    ASSERT_EQ(files::PixToImage(pix, &image), 0);
    EXPECT_EQ(image.rec()->bitsPerPixel, c.bitsRead) << c.note;
    const std::vector<uint8_t> grey = files::ToGreyBuffer(*image.rec());
    EXPECT_GT(grey[3], 200) << c.note;
    EXPECT_EQ(grey[2], c.depth == 32 ? 255 : 0) << c.note;
    ASSERT_EQ(notes.size(), c.depth == 1 && !c.isColoured ? 0U : 1U);
    for (const std::string& note : notes) EXPECT_THAT(note, HasSubstr(c.note));
  }
}

TEST(OutputNamesTest, NameAFileForEveryPage) {
  const auto name = [](const char* output, const char* input, int32_t page, int32_t pages,
                       const char* suffix = "") {
    batch::InputFile file;
    file.path = input;
    file.place = std::filesystem::path(input).filename();
    return batch::OutputNames(output, suffix).FilesFor(file, pages).Of(page);
  };
  EXPECT_EQ(name("out.png", "scan.tif", 1, 1), "out.png");
  EXPECT_EQ(name("out.png", "scan.tif", 2, 3), "out-p2.png");
  EXPECT_EQ(name("out.tif", "scan.tif", 2, 3), "out.tif");
  EXPECT_EQ(name("o/", "box/a.b.jpg", 1, 1), "o/a.b.jpg");
  EXPECT_EQ(name("o/", "photo.webp", 1, 1), "o/photo.png");
  EXPECT_EQ(name("{name}-{page}.{ext}", "box/scan.bmp", 7, 12), "scan-07.bmp");
  EXPECT_EQ(name("{name}-{page:04}.png", "box/scan.bmp", 7, 12), "scan-0007.png");
  EXPECT_EQ(name("o/", "scan.tif", 2, 3, ".overlay.png"), "o/scan.overlay-p2.png");
  EXPECT_THROW(batch::OutputNames("{nome}.png", ""), files::UsageError);
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
  std::filesystem::create_directory(folder.At("out"));

  const char* bad[] = {"cut-png.png", "cut-jpg.jpg", "cut-tif.tif", "empty.tif",
                       "words.png",   "huge.pgm",    "missing.tif"};
  std::string inputs;
  for (const char* name : bad) inputs += std::string(name) + " ";
  const CommandResult result = folder.Run("straighten " + inputs + "good.png -o out/{name}.png");
  EXPECT_EQ(result.exit, 3);
  for (const char* name : bad) EXPECT_THAT(result.err, HasSubstr(std::string(name) + ": "));
  EXPECT_THAT(result.err, HasSubstr("empty.tif: is empty"));
  EXPECT_THAT(result.err, HasSubstr("60000 x 60000"));
  EXPECT_THAT(result.out, HasSubstr("good.png: "));
  EXPECT_TRUE(folder.Has("out/good.png"));
  EXPECT_FALSE(folder.Has("out/cut-png.png"));
  EXPECT_THAT(result.err, HasSubstr("8 pages: 1 sure, 7 errors"));
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
}  // namespace vorlane::testing
