// Prints what every service makes of a set of drawn pages, one line a call, so that two builds can
// be compared line by line.
//
// Everything is compared exactly: pixels and block records through a checksum, angles by their
// bits. The picture itself has a checksum too, so that a difference in the drawing is not taken for
// one in a service.
#include <bit>
#include <cinttypes>
#include <cstdio>
#include <cstring>
#include <span>
#include <string>
#include <vector>

#include "support/dib_image.h"
#include "support/initialised_memory.h"
#include "vorlanepic/vorlanepic.h"

namespace vorlanepic::testing {
namespace {

// FNV-1a over everything added.
class Checksum {
 public:
  void Add(std::span<const uint8_t> bytes) {
    RequireInitialised(bytes.data(), bytes.size());
    for (const uint8_t byte : bytes) {
      value_ = (value_ ^ byte) * 0x100000001B3U;
    }
  }
  void Add(int32_t number) {
    uint8_t bytes[sizeof number];
    std::memcpy(bytes, &number, sizeof number);
    Add(bytes);
  }
  // The meaningful bits of each row, without padding.
  void AddRow(const uint8_t* row, int32_t width, int32_t bitsPerPixel) {
    const int32_t bits = width * bitsPerPixel;
    Add(std::span(row, static_cast<size_t>(bits / 8)));
    if (bits % 8 != 0) Add(row[bits / 8] >> (8 - bits % 8));
  }
  uint64_t value() const { return value_; }

 private:
  uint64_t value_ = 0xCBF29CE484222325U;
};

Checksum OfImage(const ImageRec& image) {
  Checksum sum;
  if (image.pixels == nullptr) return sum;
  for (int32_t y = 0; y < image.height; ++y) {
    sum.AddRow(image.rows[y], image.width, image.bitsPerPixel);
  }
  return sum;
}

void Print(const std::string& call, int32_t status, int32_t width, int32_t height, double angle,
           const Checksum& sum) {
  for (const int32_t& number : {status, width, height}) RequireInitialised(&number, sizeof number);
  RequireInitialised(&angle, sizeof angle);
  std::printf("%s: status %d, %d x %d, angle %.9f (%016" PRIx64 "), %016" PRIx64 "\n", call.c_str(),
              status, width, height, angle, std::bit_cast<uint64_t>(angle), sum.value());
}

void PrintDib(const std::string& call, int32_t status, double angle, const DibRec& image) {
  if (image.bits == nullptr) {
    Print(call, status, 0, 0, angle, {});
    return;
  }
  const int32_t width = DibField(image, 4);
  const int32_t height = DibField(image, 8);
  const int32_t bitsPerPixel = DibField(image, 12) >> 16;
  Checksum sum;
  const ptrdiff_t lineBytes = (width * bitsPerPixel + 31) / 32 * 4;
  for (int32_t y = 0; y < height; ++y) {
    sum.AddRow(image.bits + y * lineBytes, width, bitsPerPixel);
  }
  Print(call, status, width, height, angle, sum);
}

void PrunedRotation(const std::string& page, const TestImage& scan) {
  for (int32_t mode = INTERP_BICUBIC; mode <= INTERP_NEAREST; ++mode) {
    for (const int32_t background : {0, 255}) {
      double angle = 0;
      ImageRec out{};
      const int32_t threshold = background == 0 ? 0 : 230;
      const int32_t status = ImageVorlaneEx(scan.rec(), mode, threshold, background, &angle, &out);
      Print(page + " ImageVorlaneEx mode " + std::to_string(mode) + " background " +
                std::to_string(background),
            status, out.width, out.height, angle, OfImage(out));
      if (out.pixels != nullptr) Imgbuf_Destory(&out);
    }
  }

  std::vector<uint8_t> buffer(static_cast<size_t>(scan.rec()->imageBytes) * 2);
  std::memcpy(buffer.data(), scan.rec()->pixels, static_cast<size_t>(scan.rec()->imageBytes));
  int32_t width = scan.rec()->width;
  int32_t height = scan.rec()->height;
  const int32_t depth = scan.rec()->bitsPerPixel;
  const int32_t result = VorlanePic(buffer.data(), &width, &height, depth, INTERP_BICUBIC, 80);
  Checksum sum;
  const ptrdiff_t lineBytes = (width * depth + 31) / 32 * 4;
  for (int32_t y = 0; y < height; ++y) sum.AddRow(buffer.data() + y * lineBytes, width, depth);
  Print(page + " VorlanePic", result, width, height, 0, sum);
}

void DeskewAndCrop(const std::string& page, const TestImage& scan) {
  const TestDib bitmap(scan);
  const uint8_t fill[3] = {10, 20, 30};
  for (const int32_t method : {1, 2, 3}) {
    const DeskewCropParam param{nullptr, 0, method, 2, 8, 5, 3.5, 2.0, 10, 3, 5, 8, 2.0};
    for (int32_t mode = INTERP_BICUBIC; mode <= INTERP_NEAREST; ++mode) {
      const std::string call =
          page + " method " + std::to_string(method) + " mode " + std::to_string(mode);
      double angle = 0;
      ImageRec out{};
      int32_t status = ImageDeskewCropEx(scan.rec(), mode, 0, 0, 2, fill, &angle, &out, param, 1);
      Print(call + " ImageDeskewCropEx", status, out.width, out.height, angle, OfImage(out));
      if (out.pixels != nullptr) Imgbuf_Destory(&out);

      DibRec made{};
      status = ImageDeskewCrop(bitmap.rec(), mode, 60, 0, 0, fill, &angle, &made, param, 1);
      PrintDib(call + " ImageDeskewCrop", status, angle, made);
      if (made.bits != nullptr) ImgbufDestory(&made);
    }
  }
}

void Forms(const std::string& page, const TestImage& scan) {
  const TestDib bitmap(scan);
  const uint8_t fill[3] = {255, 255, 255};
  const DeskewCropParam param{nullptr, 0, 2, 2, 8, 5, 3.5, 2.0, 10, 3, 5, 8, 2.0};
  double angle = 0;
  DibRec made{};
  int32_t status = ImageDeskewCropWithLine(bitmap.rec(), INTERP_BILINEAR, 100, 0, 0, fill, &angle,
                                           &made, param, 0, 0, 0, 0, 1);
  PrintDib(page + " ImageDeskewCropWithLine", status, angle, made);
  if (made.bits != nullptr) ImgbufDestory(&made);
  angle = 0;
  status = GetAngleOMR(bitmap.rec(), 100, 500, 4, 20, &angle);
  Print(page + " GetAngleOMR", status, 0, 0, angle, {});
}

void Blocks(const std::string& page, const TestImage& scan) {
  const ImageRec& image = *scan.rec();
  const BlockMarkParam param{2, 400, 3, 120};
  const BlockRect rect{10, 10, image.width - 30, image.height - 20};
  BlockSetRec set{};
  const int32_t status =
      ImageBlockMarkHorEx(image.pixels, image.height, image.lineBytes, &param, &rect, &set);
  Checksum sum;
  for (const BlockRec& block : std::span(set.blocks, static_cast<size_t>(set.count))) {
    for (const int32_t field :
         {block.area, block.centerX, block.centerY, block.width, block.left, block.right,
          block.height, block.bottom, block.top, block.state, block.root,
          static_cast<int32_t>(block.minValue), static_cast<int32_t>(block.maxValue)}) {
      sum.Add(field);
    }
    for (const BlockPoint& point : std::span(block.points, static_cast<size_t>(block.pointCount))) {
      sum.Add(point.x << 16 | point.y);
    }
  }
  Print(page + " ImageBlockMarkHorEx", status, set.count, 0, 0, sum);
  DestoryBlockSetRec(&set);
}

void PrintAll() {
  for (const int32_t bitsPerPixel : {1, 8, 24}) {
    for (const double degrees : {0.0, 1.3, -2.7, 11.0, -33.0}) {
      DrawnPage page;
      page.imageWidth = 601;  // rows that need padding at every depth
      page.imageHeight = 640;
      page.centerX = 300;
      page.centerY = 320;
      page.bitsPerPixel = bitsPerPixel;
      page.degrees = degrees;
      page.text = true;
      page.noise = bitsPerPixel == 1 ? 0 : 6;
      const TestImage scan = DrawPage(page);
      const std::string name =
          std::to_string(bitsPerPixel) + " bits, " + std::to_string(degrees) + " degrees";
      Print(name, 0, page.imageWidth, page.imageHeight, 0, OfImage(*scan.rec()));
      PrunedRotation(name, scan);
      DeskewAndCrop(name, scan);
      if (bitsPerPixel == 8) Blocks(name, scan);
    }
    for (const bool tall : {false, true}) {
      DrawnBarSheet sheet;
      sheet.page.imageWidth = 1001;
      sheet.page.imageHeight = 1100;
      sheet.page.pageWidth = 860;
      sheet.page.pageHeight = 960;
      sheet.page.centerX = 500;
      sheet.page.centerY = 550;
      sheet.page.bitsPerPixel = bitsPerPixel;
      sheet.page.degrees = 1.5;
      sheet.barLength = 700;
      sheet.barThickness = 10;
      sheet.barX = tall ? -300 : 0;
      sheet.barY = tall ? 0 : -300;
      sheet.tall = tall;
      const TestImage scan = DrawBarSheet(sheet);
      const std::string name = std::to_string(bitsPerPixel) + " bits, " +
                               (tall ? "form with a tall bar" : "form with a wide bar");
      Print(name, 0, sheet.page.imageWidth, sheet.page.imageHeight, 0, OfImage(*scan.rec()));
      Forms(name, scan);
    }
  }
}

}  // namespace
}  // namespace vorlanepic::testing

int main() { vorlanepic::testing::PrintAll(); }
