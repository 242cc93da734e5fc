// What comes out is what went in, straight: how pages are stored and what their files say, read
// back with other makers' tools.
#include <filesystem>
#include <thread>
#include <tiff.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "app/files/picture_file.h"
#include "app/files/picture_writer.h"
#include "app/run_command.h"

namespace vorlane::testing {
namespace {

using files::FileFormat;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

class KeptTest : public ::testing::Test {
 protected:
  // A page with all that TIFF can say, dressed by the tools that archives use.
  void WriteDressedTiff() const {
    const TestImage page = SmallPage(24, 3);
    folder_.Write("in.tif", {&page}, 299);
    for (const char* tag :
         {"-s 282 299.5", "-s 283 299.5", "-s 270 'A letter'", "-s 269 'Box 7'", "-s 315 'A clerk'",
          "-s 285 recto", "-s 297 3 9", "-s 306 '2026:01:02 03:04:05'"}) {
      ASSERT_EQ(folder_.Shell(std::string("tiffset ") + tag + " in.tif").exit, 0) << tag;
    }
    Dress("in.tif");
  }

  void Dress(const std::string& name) const {
    ASSERT_EQ(folder_
                  .Shell("exiv2 -M'set Exif.Photo.UserComment charset=Ascii by hand'"
                         " -M'set Exif.GPSInfo.GPSAltitude 12/5'"
                         " -M'set Iptc.Application2.Caption mended'"
                         " -M'set Xmp.dc.title lang=x-default Letters' " +
                         name)
                  .exit,
              0);
  }

  std::string Straightened(const std::string& from, const std::string& to) const {
    const CommandResult result =
        folder_.Run("straighten " + from + " -o " + to + " --accept-doubtful");
    EXPECT_EQ(result.exit, 0) << result.err;
    return result.out;
  }

  std::string Said(const std::string& name) const {
    return folder_.Shell("exiv2 -pa " + name + " | grep -v XMLPacket").out;
  }

  WorkFolder folder_;
};

constexpr const char* kHung[] = {"by hand", "2.4 m", "mended", "Letters"};

TEST_F(KeptTest, TiffKeepsEveryTag) {
  WriteDressedTiff();
  (void)Straightened("in.tif", "out.tif");
  const std::string tags = folder_.Shell("tiffinfo out.tif").out;
  for (const char* tag : {"Resolution: 299.5, 299.5", "ImageDescription: A letter",
                          "DocumentName: Box 7", "Artist: A clerk", "PageName: recto",
                          "Page Number: 3-9", "DateTime: 2026:01:02 03:04:05"}) {
    EXPECT_THAT(tags, HasSubstr(tag));
  }
  for (const char* words : kHung) EXPECT_THAT(Said("out.tif"), HasSubstr(words));
}

TEST_F(KeptTest, OtherFormatsTakeWhatTheyHaveAPlaceFor) {
  WriteDressedTiff();
  EXPECT_THAT(Straightened("in.tif", "out.jpg"), HasSubstr("rounded to whole dots"));
  for (const char* words : kHung) EXPECT_THAT(Said("out.jpg"), HasSubstr(words));
  EXPECT_THAT(Straightened("in.tif", "out.png"), HasSubstr("IPTC dropped"));
  EXPECT_THAT(Said("out.png"), HasSubstr("Letters"));
  EXPECT_THAT(Said("out.png"), HasSubstr("by hand"));
  EXPECT_THAT(Straightened("in.tif", "out.bmp"), HasSubstr("XMP, EXIF, text, IPTC dropped"));
  (void)Straightened("out.jpg", "back.tif");
  for (const char* words : kHung) EXPECT_THAT(Said("back.tif"), HasSubstr(words));
}

TEST_F(KeptTest, JpegIsTurnedAsItsFileAsksAndSaysSo) {
  const TestImage page = SmallPage(24, 3);  // 400 x 480
  folder_.Write("in.jpg", {&page}, 200);
  Dress("in.jpg");
  ASSERT_EQ(folder_.Shell("exiv2 -M'set Exif.Image.Orientation 6' in.jpg").exit, 0);
  const CommandResult result = folder_.Run("straighten in.jpg -o out.jpg --json");
  EXPECT_EQ(result.Objects().at(0)["width"], 480);
  for (const char* words : kHung) EXPECT_THAT(Said("out.jpg"), HasSubstr(words));
  EXPECT_THAT(Said("out.jpg"), HasSubstr("top, left"));
}

struct CodingCase {
  const char* name;
  uint16_t compression;
  int32_t bitsPerPixel;
  const char* said;  // by tiffinfo
};

TEST_F(KeptTest, TiffKeepsItsScheme) {
  for (const CodingCase& c :
       {CodingCase{"none", COMPRESSION_NONE, 24, "Compression Scheme: None"},
        CodingCase{"packbits", COMPRESSION_PACKBITS, 8, "Compression Scheme: PackBits"},
        CodingCase{"lzw", COMPRESSION_LZW, 8, "Compression Scheme: LZW"},
        CodingCase{"deflate", COMPRESSION_ADOBE_DEFLATE, 24, "Compression Scheme: AdobeDeflate"},
        CodingCase{"jpeg", COMPRESSION_JPEG, 24, "YCbCr Subsampling: 2, 2"},
        CodingCase{"g3", COMPRESSION_CCITTFAX3, 1, "2-d encoding+EOL padding"},
        CodingCase{"g4", COMPRESSION_CCITTFAX4, 1, "CCITT Group 4"}}) {
    const TestImage page = SmallPage(c.bitsPerPixel, 3);
    files::Page source;
    source.coding.tiff = {.compression = c.compression, .faxOptions = 5, .rowsPerStrip = 64};
    source.coding.isInverted = true;
    source.coding.jpeg = {{}, 60, 2, 2, false};
    EXPECT_EQ(Imgbuf_New(source.image.rec(), 1, 1000, 8, 0), 0);
    const std::string in = std::string(c.name) + ".tif";
    files::WritePicture(folder_.At(in), *page.rec(), source, files::Replacing::kNever);
    EXPECT_THAT(Straightened(in, "out-" + in), ::testing::EndsWith("(4 sides)\n"));  // no note
    const std::string tags = folder_.Shell("tiffinfo out-" + in).out;
    EXPECT_THAT(tags, HasSubstr(c.said)) << c.name;
    EXPECT_THAT(tags, HasSubstr("Rows/Strip: 64")) << c.name;
    EXPECT_EQ(tags.find("min-is-white") != std::string::npos, c.bitsPerPixel != 24) << c.name;
    const files::Page kept = files::PictureFile(folder_.At("out-" + in)).Read(1);
    EXPECT_EQ(kept.coding.jpeg.quality, c.compression == COMPRESSION_JPEG ? 60 : 0);
  }
}

TEST_F(KeptTest, JpegKeepsItsTables) {
  const TestImage page = SmallPage(24, 3);
  files::Page source;
  source.coding.jpeg = {{}, 63, 2, 1, true};
  for (uint16_t i = 0; i < 2; ++i) {
    source.coding.jpeg.tables.emplace_back();
    source.coding.jpeg.tables.back().fill(static_cast<uint16_t>(9 + i));
  }
  files::WritePicture(folder_.At("in.jpg"), *page.rec(), source, files::Replacing::kNever);
  (void)Straightened("in.jpg", "out.jpg");
  const files::JpegCoding kept = files::PictureFile(folder_.At("out.jpg")).Read(1).coding.jpeg;
  EXPECT_EQ(kept.tables, source.coding.jpeg.tables);
  EXPECT_EQ(kept.horizontal, 2);
  EXPECT_EQ(kept.vertical, 1);
  EXPECT_TRUE(kept.isProgressive);
}

// A page left as it is keeps its strips and all entries of its directory, byte for byte.
TEST_F(KeptTest, PagesLeftInATiffAreCopied) {
  const TestImage nothing = DarkField();
  const TestImage page = SmallPage(8, 3);
  folder_.Write("in.tif", {&nothing, &page});
  EXPECT_EQ(folder_.Run("straighten in.tif -o out.tif").exit, 0);
  const auto kept = [&](const char* name) {
    const files::PictureFile file(folder_.At(name));
    const auto place = *file.PlaceOf(1);
    size_t lost = 0;
    auto entries = files::ReadDirectory(place.source, place.header, place.directory, &lost);
    const auto* offset = files::FindEntry(entries, TIFFTAG_STRIPOFFSETS);
    const auto* count = files::FindEntry(entries, TIFFTAG_STRIPBYTECOUNTS);
    files::Bytes strip(files::NumberOf(*count));
    (void)place.source.ReadAt(files::NumberOf(*offset), strip);
    return strip;
  };
  EXPECT_EQ(kept("in.tif"), kept("out.tif"));
}

TEST_F(KeptTest, ReplacedFilesHandOnTheirRights) {
  const TestImage page = SmallPage(8, 3);
  folder_.Write("in.png", {&page});
  folder_.WriteText("out.png", "old");
  std::filesystem::permissions(folder_.At("out.png"), std::filesystem::perms::owner_read);
  EXPECT_EQ(folder_.Run("straighten in.png -o out.png --overwrite").exit, 0);
  struct stat info {};
  ASSERT_EQ(::stat(folder_.At("out.png").c_str(), &info), 0);
  EXPECT_EQ(info.st_mode & 07777U, 0400U);
  EXPECT_NE(folder_.Bytes("out.png"), "old");
}

TEST(PendingFileTest, NeverReplacesAFileThatAppears) {
  const WorkFolder folder;
  files::PendingFile file(folder.At("out"), files::Replacing::kNever, files::Durability::kSynced);
  file.Append(std::array<uint8_t, 1>{'n'});
  folder.WriteText("out", "theirs");
  EXPECT_THROW(file.Commit(), files::FileError);
  EXPECT_EQ(folder.Bytes("out"), "theirs");
  EXPECT_THAT(folder.Names(), ElementsAre("out"));
}

// Pages of one file read at once, by as many threads, are those read one after the other.
TEST(PictureFileTest, ServesSeveralThreads) {
  const WorkFolder folder;
  const TestImage pages[] = {SmallPage(1, 1), SmallPage(8, 2), SmallPage(24, 3), SmallPage(1, 4)};
  folder.Write("in.tif", {&pages[0], &pages[1], &pages[2], &pages[3]});
  const files::PictureFile file(folder.At("in.tif"));
  std::array<int32_t, 4> same{};
  std::vector<std::thread> threads;
  for (size_t i = 0; i < 4; ++i) {
    threads.emplace_back([&, i] {
      for (int32_t round = 0; round < 20; ++round) {
        const files::Page page = file.Read(static_cast<int32_t>(i) + 1);
        if (SamePixels(*page.image.rec(), *pages[i].rec())) ++same[i];
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_THAT(same, ElementsAre(20, 20, 20, 20));
}

TEST(PictureFileTest, TellsOfAListOfPagesThatBreaksOff) {
  const WorkFolder folder;
  const TestImage page = SmallPage(8, 1);
  folder.Write("in.tif", {&page, &page});
  const std::string whole = folder.Bytes("in.tif");
  // The second page's directory stands at the end of the file.
  folder.WriteText("cut.tif", whole.substr(0, whole.size() - 200));
  const files::PictureFile cut(folder.At("cut.tif"));
  ASSERT_EQ(cut.count(), 2);
  EXPECT_TRUE(SamePixels(*cut.Read(1).image.rec(), *page.rec()));
  EXPECT_THROW((void)cut.Read(2), files::FileError);
  EXPECT_THROW(files::PictureFile(folder.At("in.tif"), {.mostPages = 1}), files::FileError);
  EXPECT_THROW((void)files::PictureFile(folder.At("in.tif"), {.mostPixels = 1000}).Read(1),
               files::FileError);
}

}  // namespace
}  // namespace vorlane::testing
