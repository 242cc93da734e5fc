#include "app/files/image_convert.h"

#include <cstddef>
#include <utility>

#include "vorlanepic/vorlanepic.h"

namespace vorlane::files {
namespace {

// Pixels past the last column of a 1-bit row stay dark, so that nothing of them counts as paper.
uint32_t LastWordMask(int32_t width) {
  return width % 32 == 0 ? 0xFFFFFFFFU : 0xFFFFFFFFU << (32 - width % 32);
}

void StoreWord(uint8_t* bytes, uint32_t word) {
  bytes[0] = static_cast<uint8_t>(word >> 24);
  bytes[1] = static_cast<uint8_t>(word >> 16);
  bytes[2] = static_cast<uint8_t>(word >> 8);
  bytes[3] = static_cast<uint8_t>(word);
}

uint32_t LoadWord(const uint8_t* bytes) {
  return static_cast<uint32_t>(bytes[0]) << 24 | static_cast<uint32_t>(bytes[1]) << 16 |
         static_cast<uint32_t>(bytes[2]) << 8 | bytes[3];
}

PixPtr WithoutColourTable(PixPtr pix, std::vector<std::string>* notes) {
  const int32_t bits = pixGetDepth(pix.get());
  int32_t blackAndWhite = 0;
  int32_t coloured = 0;
  if (bits == 1) pixcmapIsBlackAndWhite(pixGetColormap(pix.get()), &blackAndWhite);
  pixcmapHasColor(pixGetColormap(pix.get()), &coloured);
  if (blackAndWhite != 0) {
    return PixPtr(pixRemoveColormap(pix.get(), REMOVE_CMAP_TO_BINARY));
  }
  const std::string palette = std::to_string(bits) + "-bit palette";
  notes->push_back(coloured != 0 ? palette + " converted to 24-bit colour"
                                 : palette + " of greys converted to 8-bit grey");
  return PixPtr(pixRemoveColormap(
      pix.get(), coloured != 0 ? REMOVE_CMAP_TO_FULL_COLOR : REMOVE_CMAP_TO_GRAYSCALE));
}

// Transparent places take the colour of blank paper.
PixPtr WithoutAlpha(PixPtr pix, std::vector<std::string>* notes) {
  int32_t opaque = 0;
  pixAlphaIsOpaque(pix.get(), &opaque);
  notes->emplace_back(opaque != 0 ? "32-bit colour converted to 24-bit, its alpha is opaque"
                                  : "32-bit colour converted to 24-bit, laid on white");
  PixPtr flat = opaque != 0 ? std::move(pix) : PixPtr(pixAlphaBlendUniform(pix.get(), 0xFFFFFF00));
  if (flat) pixSetSpp(flat.get(), 3);
  return flat;
}

}  // namespace

PixPtr ToServiceDepth(PixPtr pix, std::vector<std::string>* notes) {
  if (pix && pixGetColormap(pix.get()) != nullptr) pix = WithoutColourTable(std::move(pix), notes);
  if (!pix) return nullptr;
  const int32_t bits = pixGetDepth(pix.get());
  switch (bits) {
    case 1:
    case 8:
      return pix;
    case 32:
      return pixGetSpp(pix.get()) == 4 ? WithoutAlpha(std::move(pix), notes) : std::move(pix);
    case 16:
      notes->emplace_back("16-bit grey converted to 8-bit grey");
      return PixPtr(pixConvert16To8(pix.get(), L_MS_BYTE));
    default:
      notes->push_back(std::to_string(bits) + "-bit picture converted to 8-bit grey");
      return PixPtr(pixConvertTo8(pix.get(), 0));
  }
}

int32_t PixToImage(const PixPtr& pix, PagePixels* image) {
  const int32_t width = pixGetWidth(pix.get());
  const int32_t height = pixGetHeight(pix.get());
  const int32_t bits = pixGetDepth(pix.get()) == 32 ? 24 : pixGetDepth(pix.get());
  const int32_t status = image->Make(width, height, bits);
  if (status != STATUS_OK) return status;

  const uint32_t* words = pixGetData(pix.get());
  const int32_t wordsPerRow = pixGetWpl(pix.get());
  for (int32_t y = 0; y < height; ++y, words += wordsPerRow) {
    uint8_t* row = image->rec()->rows[y];
    if (bits == 24) {
      for (int32_t x = 0; x < width; ++x) {
        row[3 * x] = static_cast<uint8_t>(words[x] >> L_BLUE_SHIFT);
        row[3 * x + 1] = static_cast<uint8_t>(words[x] >> L_GREEN_SHIFT);
        row[3 * x + 2] = static_cast<uint8_t>(words[x] >> L_RED_SHIFT);
      }
      continue;
    }
    // A set bit is black in the picture and light in a page image.
    const uint32_t flip = bits == 1 ? 0xFFFFFFFFU : 0;
    for (int32_t i = 0; i < wordsPerRow; ++i) StoreWord(row + 4 * i, words[i] ^ flip);
    if (bits == 1) {
      const int32_t last = wordsPerRow - 1;
      StoreWord(row + 4 * last, ~words[last] & LastWordMask(width));
    }
  }
  return STATUS_OK;
}

PixPtr ImageToPix(const ImageRec& image) {
  const int32_t bits = image.bitsPerPixel;
  PixPtr pix(pixCreate(image.width, image.height, bits == 24 ? 32 : bits));
  if (!pix) return nullptr;
  uint32_t* words = pixGetData(pix.get());
  const int32_t wordsPerRow = pixGetWpl(pix.get());
  for (int32_t y = 0; y < image.height; ++y, words += wordsPerRow) {
    const uint8_t* row = image.rows[y];
    if (bits == 24) {
      for (int32_t x = 0; x < image.width; ++x) {
        words[x] = static_cast<uint32_t>(row[3 * x]) << L_BLUE_SHIFT |
                   static_cast<uint32_t>(row[3 * x + 1]) << L_GREEN_SHIFT |
                   static_cast<uint32_t>(row[3 * x + 2]) << L_RED_SHIFT;
      }
      continue;
    }
    const uint32_t flip = bits == 1 ? 0xFFFFFFFFU : 0;
    for (int32_t i = 0; i < wordsPerRow; ++i) words[i] = LoadWord(row + 4 * i) ^ flip;
    if (bits == 1) words[wordsPerRow - 1] &= LastWordMask(image.width);
  }
  return pix;
}

std::vector<uint8_t> ToGreyBuffer(const ImageRec& image) {
  const auto width = static_cast<size_t>(image.width);
  std::vector<uint8_t> grey(width * static_cast<size_t>(image.height));
  for (int32_t y = 0; y < image.height; ++y) {
    const uint8_t* row = image.rows[y];
    uint8_t* out = grey.data() + static_cast<size_t>(y) * width;
    for (size_t x = 0; x < width; ++x) {
      switch (image.bitsPerPixel) {
        case 1:
          out[x] = (row[x / 8] & (0x80 >> (x % 8))) != 0 ? 255 : 0;
          break;
        case 8:
          out[x] = row[x];
          break;
        default:
          out[x] = static_cast<uint8_t>(
              (114 * row[3 * x] + 587 * row[3 * x + 1] + 299 * row[3 * x + 2] + 500) / 1000);
      }
    }
  }
  return grey;
}

}  // namespace vorlane::files
