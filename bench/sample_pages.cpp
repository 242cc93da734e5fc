#include "sample_pages.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <random>

namespace vorlanepic::bench {

using testing::DrawnBarSheet;
using testing::DrawnPage;
using testing::TestImage;

DrawnPage ScannedPage(double megapixels, double degrees, int32_t bitsPerPixel) {
  const double frameWidth = std::sqrt(megapixels * 1e6 / 1.5);
  const double radians = std::abs(degrees) * 0.017453292519943295;
  // The page's bounding box, in its widths, across the frame; 3 % of the frame stay background.
  const double across = std::cos(radians) + 1.5 * std::sin(radians);
  const double down = std::cos(radians) + std::sin(radians) / 1.5;
  const double share = std::min(0.9, 0.97 / std::max(across, down));

  DrawnPage page;
  // Whole bytes at 1 bit, as scanners deliver: the right border is then found to the pixel.
  page.imageWidth = static_cast<int32_t>(frameWidth) / 8 * 8;
  page.imageHeight = static_cast<int32_t>(frameWidth * 1.5);
  page.bitsPerPixel = bitsPerPixel;
  page.pageWidth = share * page.imageWidth;
  page.pageHeight = share * page.imageHeight;
  page.centerX = page.imageWidth / 2.0;
  page.centerY = page.imageHeight / 2.0;
  page.degrees = degrees;
  page.noise = 8;
  page.text = true;
  return page;
}

DrawnPage ContestPage(int32_t bitsPerPixel) {
  DrawnPage page = ScannedPage(6.0, 2.0, bitsPerPixel);
  page.pageWidth = 1800;
  page.pageHeight = 2800;
  return page;
}

DrawnBarSheet ScannedForm(double megapixels, double degrees, int32_t bitsPerPixel) {
  DrawnBarSheet form;
  form.page = ScannedPage(megapixels, degrees, bitsPerPixel);
  form.page.text = false;
  form.barLength = 0.4 * form.page.imageWidth;
  form.barThickness = form.barLength / 120;
  form.barY = -0.3 * form.page.pageHeight;
  return form;
}

namespace {

// A letter: a ring or a bent stroke, whose pixels all touch.
void DrawLetter(ByteImage& image, int32_t left, int32_t top, int32_t width, int32_t height,
                bool isOpen) {
  constexpr int32_t kStroke = 3;
  for (int32_t y = 0; y < height; ++y) {
    for (int32_t x = 0; x < width; ++x) {
      const bool isEdge = x < kStroke || y < kStroke || y >= height - kStroke ||
                          (x >= width - kStroke && !(isOpen && y < height / 2));
      const bool isCorner = (x < 2 || x >= width - 2) && (y < 2 || y >= height - 2);
      if (!isEdge || isCorner) continue;
      image.pixels[static_cast<size_t>(top + y) * static_cast<size_t>(image.width) +
                   static_cast<size_t>(left + x)] = 255;
    }
  }
}

ByteImage BlankLetterSheet(double megapixels) {
  const double side = std::sqrt(megapixels / kLetterSheet);
  const auto width = static_cast<int32_t>(std::lround(2550 * side));
  const auto height = static_cast<int32_t>(std::lround(3300 * side));
  return {width, height,
          std::vector<uint8_t>(static_cast<size_t>(width) * static_cast<size_t>(height))};
}

void PutLittleEndian(uint8_t* at, uint32_t value, int32_t bytes) {
  for (int32_t i = 0; i < bytes; ++i) at[i] = static_cast<uint8_t>(value >> (8 * i));
}

}  // namespace

ByteImage DenseText(double megapixels) {
  ByteImage image = BlankLetterSheet(megapixels);
  std::mt19937 random(1);
  std::uniform_int_distribution<int32_t> letterWidth(10, 20);
  std::uniform_int_distribution<int32_t> letterHeight(16, 22);
  std::uniform_int_distribution<int32_t> oneIn(0, 5);
  constexpr int32_t kMargin = 150;
  constexpr int32_t kLinePitch = 34;
  for (int32_t top = kMargin; top < image.height - kMargin; top += kLinePitch) {
    for (int32_t left = kMargin; left < image.width - kMargin;) {
      const int32_t width = letterWidth(random);
      DrawLetter(image, left, top, width, letterHeight(random), oneIn(random) < 3);
      left += width + (oneIn(random) == 0 ? 14 : 4);
    }
  }
  return image;
}

ByteImage Noise(double megapixels) {
  ByteImage image = BlankLetterSheet(megapixels);
  std::mt19937 random(1);
  std::uniform_int_distribution<int32_t> oneIn(0, 9);
  for (uint8_t& pixel : image.pixels) pixel = oneIn(random) == 0 ? 255 : 0;
  for (int32_t y = 0; y < image.height; ++y) {
    uint8_t* rowEnd = image.pixels.data() + static_cast<ptrdiff_t>(y + 1) * image.width;
    rowEnd[-1] = rowEnd[-2] = 0;
  }
  return image;
}

DibView::DibView(const ImageRec& image, int32_t dotsPerInch) {
  // The least number of pixels per metre that comes to these dots.
  const int32_t pixelsPerMetre = (dotsPerInch * 10000 + 253) / 254;
  PutLittleEndian(infoHeader_, sizeof infoHeader_, 4);
  PutLittleEndian(infoHeader_ + 4, static_cast<uint32_t>(image.width), 4);
  PutLittleEndian(infoHeader_ + 8, static_cast<uint32_t>(image.height), 4);
  PutLittleEndian(infoHeader_ + 12, 1, 2);
  PutLittleEndian(infoHeader_ + 14, static_cast<uint32_t>(image.bitsPerPixel), 2);
  PutLittleEndian(infoHeader_ + 24, static_cast<uint32_t>(pixelsPerMetre), 4);
  rec_ = {fileHeader_, infoHeader_, nullptr, image.pixels};
}

TestImage AtDepth(const TestImage& grey, int32_t bitsPerPixel) {
  const ImageRec& from = *grey.rec();
  TestImage image(from.width, from.height, bitsPerPixel);
  for (int32_t y = 0; y < from.height; ++y) {
    for (int32_t x = 0; x < from.width; ++x) image.Set(x, y, from.rows[y][x]);
  }
  return image;
}

}  // namespace vorlanepic::bench
