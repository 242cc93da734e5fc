#include "fuzz_pages.h"

#include <algorithm>

namespace vorlanepic::fuzz {

using testing::DrawnBarSheet;
using testing::DrawnPage;
using testing::EdgeShape;
using testing::TestImage;

namespace {

constexpr int32_t kDepths[] = {1, 8, 24};

DrawnPage ReadPage(FuzzInput& input) {
  DrawnPage page;
  page.bitsPerPixel = kDepths[input.In(0, 2)];
  page.imageWidth = input.In(1, 160);
  page.imageHeight = input.In(1, 160);
  page.pageWidth = input.In(0, 2 * page.imageWidth);
  page.pageHeight = input.In(0, 2 * page.imageHeight);
  page.centerX = input.In(0, page.imageWidth);
  page.centerY = input.In(0, page.imageHeight);
  page.degrees = input.In(-900, 900) / 10.0;
  page.background = input.Byte();
  page.paper = input.Byte();
  page.noise = input.Flag() ? input.In(0, 255) : 0;
  page.edges = static_cast<EdgeShape>(input.In(0, 2));
  page.edgeDepth = input.In(0, 40);
  page.text = input.Flag();
  return page;
}

// Lays runs of equal bytes over the pixels.
void Strew(TestImage& image, FuzzInput& input) {
  const ImageRec& rec = *image.rec();
  for (int32_t strokes = input.In(0, 20); strokes > 0; --strokes) {
    const int32_t from = input.In(0, 65535) % rec.imageBytes;
    const int32_t count = std::min(int32_t{input.Byte()}, rec.imageBytes - from);
    std::fill_n(rec.pixels + from, count, input.Byte());
  }
}

void Put(std::vector<uint8_t>& bytes, size_t at, int32_t value, size_t count) {
  for (size_t i = 0; i < count; ++i) {
    bytes[at + i] = static_cast<uint8_t>(static_cast<uint32_t>(value) >> (8 * i));
  }
}

}  // namespace

TestImage DrawFuzzPage(FuzzInput& input) {
  TestImage image = DrawPage(ReadPage(input));
  Strew(image, input);
  return image;
}

TestImage DrawFuzzForm(FuzzInput& input) {
  DrawnBarSheet sheet;
  sheet.page = ReadPage(input);
  sheet.barLength = input.In(1, 160);
  sheet.barThickness = input.In(1, 20);
  sheet.barX = input.In(-40, 40);
  sheet.barY = input.In(-40, 40);
  sheet.tall = input.Flag();
  TestImage image = DrawBarSheet(sheet);
  Strew(image, input);
  return image;
}

FuzzDib::FuzzDib(const ImageRec& image, FuzzInput& input)
    : fileHeader_{'B', 'M'}, infoHeader_(40), bits_(image.pixels, image.pixels + image.imageBytes) {
  Put(infoHeader_, 0, 40, 4);
  Put(infoHeader_, 4, image.width, 4);
  Put(infoHeader_, 8, image.height, 4);
  Put(infoHeader_, 14, image.bitsPerPixel, 2);
  Put(infoHeader_, 24, input.MostlyIn(0, 10000), 4);
  // No larger image than there are bytes for may pass the checks, so sizes are spoilt to what none
  // can have.
  constexpr int32_t kImpossible[] = {0, -1, INT32_MIN};
  if (input.Byte() < 8) Put(infoHeader_, 4, kImpossible[input.In(0, 2)], 4);
  if (input.Byte() < 8) Put(infoHeader_, 8, kImpossible[input.In(0, 2)], 4);
  if (input.Byte() < 8) {
    Put(infoHeader_, 4, INT32_MAX, 4);
    Put(infoHeader_, 8, INT32_MAX, 4);
  }
  if (input.Byte() < 8) fileHeader_[input.In(0, 1) != 0 ? 1 : 0] = input.Byte();
  if (input.Byte() < 8 && image.bitsPerPixel > 4) Put(infoHeader_, 14, input.Flag() ? 4 : 0, 2);
  rec_ = {fileHeader_.data(), infoHeader_.data(), nullptr, bits_.data()};
  if (input.Byte() < 4) rec_.fileHeader = nullptr;
  if (input.Byte() < 4) rec_.infoHeader = nullptr;
  if (input.Byte() < 4) rec_.bits = nullptr;
}

void RequireSoundImage(const ImageRec& image) {
  Require(Imgbuf_Check(&image) == 0, "an image handed back passes the image library's check");
  for (int32_t y = 0; y < image.height; ++y) {
    Require(image.rows[y] == image.pixels + static_cast<ptrdiff_t>(y) * image.lineBytes,
            "the row table leads to the rows");
  }
}

}  // namespace vorlanepic::fuzz
