// Damaged files: none may give a page that is not the one that was stored.
#include <fstream>
#include <random>
#include <tiff.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "app/files/picture_file.h"
#include "app/files/picture_writer.h"
#include "app/run_command.h"

namespace vorlane::testing {
namespace {

using files::Bytes;
using files::FileFormat;
using ::testing::HasSubstr;

files::Page ReadBytes(const Bytes& bytes) {
  return files::PictureFile("x", std::make_shared<files::MemorySource>(bytes)).Read(1);
}

struct DamageCase {
  const char* name;
  FileFormat format;
  uint16_t compression;  // of TIFF
  int32_t bitsPerPixel;
  uint32_t rowsPerStrip;
  int32_t flips;       // that are made at once; 0: nothing could tell
  int32_t mostUnseen;  // of 30 rounds, where nothing marks the end of what is stored
  bool isProgressive = false;
};

Bytes Stored(const DamageCase& c) {
  const WorkFolder folder;
  const TestImage page = DrawPage({.imageWidth = 403,
                                   .imageHeight = 480,
                                   .bitsPerPixel = c.bitsPerPixel,
                                   .pageWidth = 240,
                                   .pageHeight = 320,
                                   .centerY = 240,
                                   .degrees = 3,
                                   .text = true});
  files::Page source;
  source.coding.tiff.compression = c.compression;
  source.coding.tiff.rowsPerStrip = c.rowsPerStrip;
  source.coding.jpeg.tables.assign(c.isProgressive ? 2 : 0, {});
  for (files::JpegTable& table : source.coding.jpeg.tables) table.fill(3);
  source.coding.jpeg.isProgressive = c.isProgressive;
  EXPECT_EQ(Imgbuf_New(source.image.rec(), 1, 1000, 8, 0), 0);  // taller than a strip
  std::vector<std::string> notes;
  files::PictureWriter writer(folder.At("x"), c.format, files::Replacing::kNever,
                              files::Durability::kLeftToSystem);
  writer.Add(files::EncodePage(c.format, *page.rec(), source, {}, &notes));
  writer.Commit();
  EXPECT_TRUE(notes.empty()) << notes[0];
  return files::ReadAll(files::FileSource(folder.At("x")));
}

class DamageTest : public ::testing::TestWithParam<DamageCase> {};

TEST_P(DamageTest, CutFilesAreErrors) {
  const Bytes whole = Stored(GetParam());
  for (const size_t length : {whole.size() / 5, whole.size() / 2, whole.size() - 9}) {
    const Bytes cut(whole.begin(), whole.begin() + static_cast<ptrdiff_t>(length));
    EXPECT_THROW(ReadBytes(cut), files::FileError) << length << " of " << whole.size();
  }
}

TEST_P(DamageTest, ChangedBytesAreErrors) {
  if (GetParam().flips == 0) return;
  const Bytes whole = Stored(GetParam());
  const files::Page page = ReadBytes(whole);
  std::mt19937 random(7);
  int32_t unseen = 0;
  for (int32_t round = 0; round < 30; ++round) {
    Bytes damaged = whole;
    for (int32_t i = 0; i < GetParam().flips; ++i) {
      // The pixels' part: behind the headers, before TIFF's directory.
      const size_t at = whole.size() / 4 + random() % (whole.size() / 2);
      damaged[at] = static_cast<uint8_t>(damaged[at] ^ (1 + random() % 255));
    }
    try {
      const files::Page read = ReadBytes(damaged);
      if (!SamePixels(*read.image.rec(), *page.image.rec())) ++unseen;
    } catch (const files::FileError& error) {
      EXPECT_THAT(error.what(), HasSubstr("x: "));
    }
  }
  EXPECT_LE(unseen, GetParam().mostUnseen);
}

INSTANTIATE_TEST_SUITE_P(
    Schemes, DamageTest,
    ::testing::Values(
        DamageCase{"None1", FileFormat::kTiff, COMPRESSION_NONE, 1, 1000, 0, 0},
        DamageCase{"None8", FileFormat::kTiff, COMPRESSION_NONE, 8, 64, 0, 0},
        DamageCase{"None24", FileFormat::kTiff, COMPRESSION_NONE, 24, 64, 0, 0},
        DamageCase{"PackBits1", FileFormat::kTiff, COMPRESSION_PACKBITS, 1, 1000, 0, 0},
        DamageCase{"PackBits8", FileFormat::kTiff, COMPRESSION_PACKBITS, 8, 1000, 0, 0},
        DamageCase{"PackBits24", FileFormat::kTiff, COMPRESSION_PACKBITS, 24, 64, 0, 0},
        DamageCase{"Lzw1", FileFormat::kTiff, COMPRESSION_LZW, 1, 1000, 16, 0},
        DamageCase{"Lzw8", FileFormat::kTiff, COMPRESSION_LZW, 8, 64, 16, 0},
        DamageCase{"Lzw24", FileFormat::kTiff, COMPRESSION_LZW, 24, 1000, 16, 0},
        DamageCase{"Deflate1", FileFormat::kTiff, COMPRESSION_ADOBE_DEFLATE, 1, 64, 1, 0},
        DamageCase{"Deflate8", FileFormat::kTiff, COMPRESSION_ADOBE_DEFLATE, 8, 1000, 1, 0},
        DamageCase{"Deflate24", FileFormat::kTiff, COMPRESSION_DEFLATE, 24, 64, 1, 0},
        DamageCase{"Group3", FileFormat::kTiff, COMPRESSION_CCITTFAX3, 1, 1000, 16, 0},
        DamageCase{"Group4", FileFormat::kTiff, COMPRESSION_CCITTFAX4, 1, 1000, 16, 0},
        DamageCase{"Group4Strips", FileFormat::kTiff, COMPRESSION_CCITTFAX4, 1, 64, 16, 0},
        DamageCase{"JpegInTiff8", FileFormat::kTiff, COMPRESSION_JPEG, 8, 64, 16, 3},
        DamageCase{"JpegInTiff24", FileFormat::kTiff, COMPRESSION_JPEG, 24, 1000, 16, 3},
        DamageCase{"Png1", FileFormat::kPng, 0, 1, 0, 1, 0},
        DamageCase{"Png24", FileFormat::kPng, 0, 24, 0, 1, 0},
        DamageCase{"Jpeg8", FileFormat::kJpeg, 0, 8, 0, 16, 1},
        DamageCase{"JpegProgressive24", FileFormat::kJpeg, 0, 24, 0, 16, 0, true}),
    [](const auto& damage) { return damage.param.name; });

// A file's few bytes cannot make us work: 30000 x 30000 pixels are promised, none are there.
TEST(PromiseTest, ComparesTheHeaderWithWhatIsStored) {
  const Bytes stored = Stored({"", FileFormat::kTiff, COMPRESSION_LZW, 24, 1000, 0, 0});
  const files::MemorySource source(stored);
  const files::TiffHeader header = *files::ReadTiffHeader(source);
  size_t lost = 0;
  std::vector<files::TiffEntry> entries = files::ReadDirectory(source, header, header.first, &lost);
  const uint16_t side = 30000;
  for (files::TiffEntry& entry : entries) {
    const bool isSide = entry.tag == TIFFTAG_IMAGEWIDTH || entry.tag == TIFFTAG_IMAGELENGTH;
    if (isSide || entry.tag == TIFFTAG_ROWSPERSTRIP) {
      entry.type = TIFF_SHORT;
      entry.data = {side & 0xFF, side >> 8};
    }
  }
  Bytes promise = files::WriteTiffHeader(false, 8);
  const Bytes directory = files::WriteDirectory(entries, false, 8).bytes;
  promise.insert(promise.end(), directory.begin(), directory.end());
  promise.resize(600);
  try {
    (void)ReadBytes(promise);
    ADD_FAILURE() << "read";
  } catch (const files::FileError& error) {
    EXPECT_THAT(error.what(), HasSubstr("strip 1 ends behind the end of the file"));
  }
}

}  // namespace
}  // namespace vorlane::testing
