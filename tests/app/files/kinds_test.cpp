// Every kind of pixels that files hold, read as the page image that the services take.
#include <array>
#include <cstring>
#include <functional>
#include <png.h>
#include <tiffio.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "app/files/picture_file.h"
#include "app/run_command.h"

namespace vorlane::testing {
namespace {

using ::testing::HasSubstr;

constexpr int32_t kWidth = 37;
constexpr int32_t kHeight = 21;

// Level of a sample as a depth can hold it, 0..255.
uint8_t LevelAt(int32_t x, int32_t y, int32_t channel, int32_t bits) {
  const int32_t most = bits >= 8 ? 255 : (1 << bits) - 1;
  return static_cast<uint8_t>((x * 3 + y * 5 + channel * 7) % (most + 1) * (255 / most));
}

// A row of samples as files store them, 16 bits in this machine's byte order.
std::vector<uint8_t> RowOf(int32_t y, int32_t bits, int32_t channels, int32_t onlyChannel,
                           int32_t width, int32_t firstX = 0) {
  const int32_t stored = onlyChannel >= 0 ? 1 : channels;
  std::vector<uint8_t> row(static_cast<size_t>(width * stored * bits + 7) / 8);
  for (int32_t i = 0; i < width * stored; ++i) {
    const int32_t channel = onlyChannel >= 0 ? onlyChannel : i % stored;
    const uint32_t level = LevelAt(firstX + i / stored, y, channel, bits);
    if (bits == 16) {
      const auto value = static_cast<uint16_t>(level * 257);
      std::memcpy(row.data() + 2 * i, &value, 2);
    } else {
      const uint32_t value = bits == 8 ? level : level / (255 / ((1U << bits) - 1));
      row[static_cast<size_t>(i * bits / 8)] |=
          static_cast<uint8_t>(value << (8 - bits - i * bits % 8));
    }
  }
  return row;
}

struct TiffCase {
  const char* name;
  const char* mode;
  int32_t bits;
  int32_t channels;
  uint16_t photometric;
  uint16_t compression = COMPRESSION_NONE;
  uint16_t predictor = 1;
  bool isSplit = false;
  bool isTiled = false;
  uint16_t orientation = 1;
  int32_t alpha = -1;  // kind of the extra sample
};

void WriteTiff(const std::string& path, const TiffCase& c) {
  TIFF* tiff = TIFFOpen(path.c_str(), c.mode);
  TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, kWidth);
  TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, kHeight);
  TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, c.bits);
  TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, c.channels);
  TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, c.photometric);
  TIFFSetField(tiff, TIFFTAG_COMPRESSION, c.compression);
  TIFFSetField(tiff, TIFFTAG_ORIENTATION, c.orientation);
  TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, c.isSplit ? PLANARCONFIG_SEPARATE : PLANARCONFIG_CONTIG);
  if (c.predictor != 1) TIFFSetField(tiff, TIFFTAG_PREDICTOR, c.predictor);
  if (c.alpha >= 0) {
    const auto kind = static_cast<uint16_t>(c.alpha);
    TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, 1, &kind);
  }
  if (c.photometric == PHOTOMETRIC_PALETTE) {
    // Entry i: red i, green 255 - i, blue 0, in 16 bits.
    std::vector<uint16_t> red(size_t{1} << c.bits);
    std::vector<uint16_t> green(red.size());
    std::vector<uint16_t> blue(red.size());
    for (size_t i = 0; i < red.size(); ++i) {
      red[i] = static_cast<uint16_t>(i << 8);
      green[i] = static_cast<uint16_t>((255 - i) << 8);
    }
    TIFFSetField(tiff, TIFFTAG_COLORMAP, red.data(), green.data(), blue.data());
  }
  constexpr int32_t kTile = 16;
  constexpr int32_t kRows = 5;
  if (c.isTiled) {
    TIFFSetField(tiff, TIFFTAG_TILEWIDTH, kTile);
    TIFFSetField(tiff, TIFFTAG_TILELENGTH, kTile);
  } else {
    TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, kRows);
  }
  const int32_t planes = c.isSplit ? c.channels : 1;
  for (int32_t plane = 0; plane < planes; ++plane) {
    const int32_t only = c.isSplit ? plane : -1;
    for (int32_t top = 0; top < kHeight; top += c.isTiled ? kTile : kRows) {
      for (int32_t left = 0; left < (c.isTiled ? kWidth : 1); left += kTile) {
        std::vector<uint8_t> block;
        for (int32_t y = top; y < (c.isTiled ? top + kTile : std::min(top + kRows, kHeight)); ++y) {
          const auto row = RowOf(y, c.bits, c.channels, only, c.isTiled ? kTile : kWidth, left);
          block.insert(block.end(), row.begin(), row.end());
        }
        const auto bytes = static_cast<tmsize_t>(block.size());
        const auto x = static_cast<uint32_t>(left);
        const auto y = static_cast<uint32_t>(top);
        const auto sample = static_cast<uint16_t>(plane);
        EXPECT_EQ(c.isTiled ? TIFFWriteEncodedTile(tiff, TIFFComputeTile(tiff, x, y, 0, sample),
                                                   block.data(), bytes)
                            : TIFFWriteEncodedStrip(tiff, TIFFComputeStrip(tiff, y, sample),
                                                    block.data(), bytes),
                  bytes);
      }
    }
  }
  TIFFClose(tiff);
}

using Rgb = std::array<int32_t, 3>;

// What a stored pixel looks like.
Rgb ColourAt(const TiffCase& c, int32_t x, int32_t y) {
  const auto level = [&](int32_t channel) { return int32_t{LevelAt(x, y, channel, c.bits)}; };
  const auto onWhite = [&](int32_t value, int32_t alpha) {
    const int32_t inked = c.alpha == EXTRASAMPLE_ASSOCALPHA ? value * 255 : value * alpha;
    return std::min(255, (inked + 255 * (255 - alpha) + 127) / 255);
  };
  switch (c.photometric) {
    case PHOTOMETRIC_MINISWHITE:
      return {255 - level(0), 255 - level(0), 255 - level(0)};
    case PHOTOMETRIC_PALETTE: {
      const int32_t index = level(0) / (255 / ((1 << c.bits) - 1));
      return {index, 255 - index, 0};
    }
    case PHOTOMETRIC_SEPARATED: {
      const auto inked = [&](int32_t channel) {
        return ((255 - level(channel)) * (255 - level(3)) + 127) / 255;
      };
      return {inked(0), inked(1), inked(2)};
    }
    case PHOTOMETRIC_RGB:
      if (c.alpha < 0) return {level(0), level(1), level(2)};
      return {onWhite(level(0), level(3)), onWhite(level(1), level(3)),
              onWhite(level(2), level(3))};
    default:
      return {level(0), level(0), level(0)};
  }
}

Rgb PixelOf(const ImageRec& image, int32_t x, int32_t y) {
  const uint8_t* row = image.rows[y];
  if (image.bitsPerPixel == 24) return {row[3 * x + 2], row[3 * x + 1], row[3 * x]};
  if (image.bitsPerPixel == 8) return {row[x], row[x], row[x]};
  const int32_t level = (row[x / 8] & (0x80 >> (x % 8))) != 0 ? 255 : 0;
  return {level, level, level};
}

class TiffKindTest : public ::testing::TestWithParam<TiffCase> {};

TEST_P(TiffKindTest, IsReadAsItLooks) {
  const TiffCase& c = GetParam();
  const WorkFolder folder;
  WriteTiff(folder.At("x.tif"), c);
  const files::Page page = files::PictureFile(folder.At("x.tif")).Read(1);
  const ImageRec& image = *page.image.rec();
  constexpr int32_t w = kWidth - 1;
  constexpr int32_t h = kHeight - 1;
  // Where stored pixels stand, by the format's own table of orientations.
  const std::function<std::pair<int32_t, int32_t>(int32_t, int32_t)> places[] = {
      nullptr,
      [](int32_t x, int32_t y) { return std::pair(x, y); },
      [](int32_t x, int32_t y) { return std::pair(w - x, y); },
      [](int32_t x, int32_t y) { return std::pair(w - x, h - y); },
      [](int32_t x, int32_t y) { return std::pair(x, h - y); },
      [](int32_t x, int32_t y) { return std::pair(y, x); },
      [](int32_t x, int32_t y) { return std::pair(h - y, x); },
      [](int32_t x, int32_t y) { return std::pair(h - y, w - x); },
      [](int32_t x, int32_t y) { return std::pair(y, w - x); }};
  ASSERT_EQ(image.width, c.orientation <= 4 ? kWidth : kHeight);
  int32_t wrong = 0;
  for (int32_t y = 0; y < kHeight; ++y) {
    for (int32_t x = 0; x < kWidth; ++x) {
      const auto [toX, toY] = places[c.orientation](x, y);
      if (PixelOf(image, toX, toY) != ColourAt(c, x, y)) ++wrong;
    }
  }
  EXPECT_EQ(wrong, 0);
  const bool isKept = (c.bits == 8 || (c.bits == 1 && c.channels == 1)) && c.alpha < 0 &&
                      c.photometric != PHOTOMETRIC_PALETTE &&
                      c.photometric != PHOTOMETRIC_SEPARATED;
  EXPECT_EQ(page.notes.empty(), isKept);
  EXPECT_TRUE(!isKept || image.bitsPerPixel == c.bits * c.channels);
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, TiffKindTest,
    ::testing::Values(
        TiffCase{"Bits", "w", 1, 1, PHOTOMETRIC_MINISBLACK},
        TiffCase{"BitsFax", "w", 1, 1, PHOTOMETRIC_MINISWHITE, COMPRESSION_CCITTFAX4},
        TiffCase{"BitsTiled", "w", 1, 1, PHOTOMETRIC_MINISBLACK, COMPRESSION_NONE, 1, false, true},
        TiffCase{"Grey2", "w", 2, 1, PHOTOMETRIC_MINISBLACK},
        TiffCase{"Grey4White", "w", 4, 1, PHOTOMETRIC_MINISWHITE},
        TiffCase{"Grey8White", "w", 8, 1, PHOTOMETRIC_MINISWHITE, COMPRESSION_PACKBITS},
        TiffCase{"Grey16Swapped", "wb", 16, 1, PHOTOMETRIC_MINISBLACK},
        TiffCase{"Palette4", "w", 4, 1, PHOTOMETRIC_PALETTE},
        TiffCase{"Palette8", "w", 8, 1, PHOTOMETRIC_PALETTE, COMPRESSION_LZW},
        TiffCase{"Rgb", "w", 8, 3, PHOTOMETRIC_RGB},
        TiffCase{"RgbSplit", "w", 8, 3, PHOTOMETRIC_RGB, COMPRESSION_NONE, 1, true},
        TiffCase{"RgbTiledSplit", "w", 8, 3, PHOTOMETRIC_RGB, COMPRESSION_LZW, 2, true, true},
        TiffCase{"RgbBig", "w8", 8, 3, PHOTOMETRIC_RGB, COMPRESSION_LZW, 2},
        TiffCase{"RgbBigSwapped", "w8b", 8, 3, PHOTOMETRIC_RGB, COMPRESSION_ADOBE_DEFLATE, 2},
        TiffCase{"Rgb16Differences", "wb", 16, 3, PHOTOMETRIC_RGB, COMPRESSION_ADOBE_DEFLATE, 2},
        TiffCase{"Rgb16Split", "w", 16, 3, PHOTOMETRIC_RGB, COMPRESSION_ADOBE_DEFLATE, 2, true},
        TiffCase{"Straight", "w", 8, 4, PHOTOMETRIC_RGB, COMPRESSION_NONE, 1, false, false, 1,
                 EXTRASAMPLE_UNASSALPHA},
        TiffCase{"Premultiplied", "w", 8, 4, PHOTOMETRIC_RGB, COMPRESSION_LZW, 1, false, false, 1,
                 EXTRASAMPLE_ASSOCALPHA},
        TiffCase{"Inks", "w", 8, 4, PHOTOMETRIC_SEPARATED, COMPRESSION_ADOBE_DEFLATE},
        TiffCase{"Mirrored", "w", 1, 1, PHOTOMETRIC_MINISBLACK, COMPRESSION_NONE, 1, false, false,
                 2},
        TiffCase{"HeadDown", "w", 8, 1, PHOTOMETRIC_MINISBLACK, COMPRESSION_NONE, 1, false, false,
                 3},
        TiffCase{"Flipped", "w", 8, 3, PHOTOMETRIC_RGB, COMPRESSION_NONE, 1, false, false, 4},
        TiffCase{"Transposed", "w", 1, 1, PHOTOMETRIC_MINISBLACK, COMPRESSION_NONE, 1, false, false,
                 5},
        TiffCase{"TurnedRight", "w", 8, 3, PHOTOMETRIC_RGB, COMPRESSION_NONE, 1, false, false, 6},
        TiffCase{"Transversed", "w", 8, 1, PHOTOMETRIC_MINISBLACK, COMPRESSION_NONE, 1, false,
                 false, 7},
        TiffCase{"TurnedLeft", "w", 1, 1, PHOTOMETRIC_MINISBLACK, COMPRESSION_NONE, 1, false, false,
                 8}),
    [](const auto& kind) { return kind.param.name; });

struct PngCase {
  const char* name;
  int32_t bits;
  int32_t colour;
  int32_t interlace;
  int32_t channels;
};

class PngKindTest : public ::testing::TestWithParam<PngCase> {};

// Written by the usual library, which takes filters by turns.
TEST_P(PngKindTest, IsReadAsItLooks) {
  const PngCase& c = GetParam();
  const WorkFolder folder;
  std::FILE* file = std::fopen(folder.At("x.png").c_str(), "wb");
  png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
  png_infop info = png_create_info_struct(png);
  png_init_io(png, file);
  png_set_IHDR(png, info, kWidth, kHeight, c.bits, c.colour, c.interlace,
               PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
  png_set_filter(png, PNG_FILTER_TYPE_DEFAULT, PNG_ALL_FILTERS);
  std::vector<png_color> palette(size_t{1} << std::min(c.bits, 8));
  for (size_t i = 0; i < palette.size(); ++i) {
    palette[i] = {static_cast<uint8_t>(i), static_cast<uint8_t>(255 - i), 7};
  }
  if (c.colour == PNG_COLOR_TYPE_PALETTE) {
    png_set_PLTE(png, info, palette.data(), static_cast<int>(palette.size()));
  }
  png_write_info(png, info);
  if (c.bits == 16) png_set_swap(png);
  std::vector<std::vector<uint8_t>> rows;
  std::vector<uint8_t*> pointers;
  for (int32_t y = 0; y < kHeight; ++y) rows.push_back(RowOf(y, c.bits, c.channels, -1, kWidth));
  for (auto& row : rows) pointers.push_back(row.data());
  png_write_image(png, pointers.data());
  png_write_end(png, nullptr);
  png_destroy_write_struct(&png, &info);
  (void)std::fclose(file);

  const files::Page page = files::PictureFile(folder.At("x.png")).Read(1);
  int32_t wrong = 0;
  for (int32_t y = 0; y < kHeight; ++y) {
    for (int32_t x = 0; x < kWidth; ++x) {
      const auto level = [&](int32_t channel) { return int32_t{LevelAt(x, y, channel, c.bits)}; };
      const int32_t alpha = (c.colour & PNG_COLOR_MASK_ALPHA) != 0 ? level(c.channels - 1) : 255;
      Rgb expected = {level(0), level(c.channels >= 3 ? 1 : 0), level(c.channels >= 3 ? 2 : 0)};
      if (c.colour == PNG_COLOR_TYPE_PALETTE) {
        const int32_t index = level(0) / (255 / ((1 << c.bits) - 1));
        expected = {index, 255 - index, 7};
      }
      for (int32_t& v : expected) v = (v * alpha + 255 * (255 - alpha) + 127) / 255;
      if (PixelOf(*page.image.rec(), x, y) != expected) ++wrong;
    }
  }
  EXPECT_EQ(wrong, 0);
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, PngKindTest,
    ::testing::Values(PngCase{"Bits", 1, PNG_COLOR_TYPE_GRAY, 0, 1},
                      PngCase{"BitsInterlaced", 1, PNG_COLOR_TYPE_GRAY, 1, 1},
                      PngCase{"Grey2Interlaced", 2, PNG_COLOR_TYPE_GRAY, 1, 1},
                      PngCase{"Grey8", 8, PNG_COLOR_TYPE_GRAY, 0, 1},
                      PngCase{"Grey16", 16, PNG_COLOR_TYPE_GRAY, 0, 1},
                      PngCase{"GreyAlpha8", 8, PNG_COLOR_TYPE_GRAY_ALPHA, 0, 2},
                      PngCase{"Palette4", 4, PNG_COLOR_TYPE_PALETTE, 0, 1},
                      PngCase{"Palette8Interlaced", 8, PNG_COLOR_TYPE_PALETTE, 1, 1},
                      PngCase{"Rgb8", 8, PNG_COLOR_TYPE_RGB, 0, 3},
                      PngCase{"Rgb8Interlaced", 8, PNG_COLOR_TYPE_RGB, 1, 3},
                      PngCase{"Rgb16Interlaced", 16, PNG_COLOR_TYPE_RGB, 1, 3},
                      PngCase{"RgbAlpha8", 8, PNG_COLOR_TYPE_RGB_ALPHA, 0, 4},
                      PngCase{"RgbAlpha16", 16, PNG_COLOR_TYPE_RGB_ALPHA, 0, 4}),
    [](const auto& kind) { return kind.param.name; });

}  // namespace
}  // namespace vorlane::testing
