#include "app/commands/dib_image.h"

#include <cstddef>
#include <cstring>

#include "vorlanepic/vorlanepic.h"

namespace vorlane::commands {
namespace {

constexpr size_t kWidthAt = 4;
constexpr size_t kHeightAt = 8;
constexpr size_t kBitCountAt = 14;
constexpr size_t kPixelsPerMetreAt = 24;  // across, then down

size_t RowBytes(int32_t width, int32_t bits) {
  return (static_cast<size_t>(width) * static_cast<size_t>(bits) + 31) / 32 * 4;
}

// The smallest count that reads back as `dpi`: the form service drops what is left of the division.
int32_t PixelsPerMetre(int32_t dpi) {
  const int64_t metre = (int64_t{dpi} * 10000 + 253) / 254;
  return dpi > 0 && metre <= INT32_MAX ? static_cast<int32_t>(metre) : 0;
}

int32_t RowAt(RowOrder order, int32_t y, int32_t height) {
  return order == RowOrder::kBottomFirst ? height - 1 - y : y;
}

}  // namespace

int32_t MakeDib(const ImageRec& image, int32_t dpi, RowOrder order, ScratchDib* dib) {
  const int32_t status = ImgbufNew(dib->rec(), image.width, image.height, image.bitsPerPixel);
  if (status != STATUS_OK) return status;
  const int32_t perMetre = PixelsPerMetre(dpi);
  std::memcpy(dib->rec()->infoHeader + kPixelsPerMetreAt, &perMetre, 4);
  std::memcpy(dib->rec()->infoHeader + kPixelsPerMetreAt + 4, &perMetre, 4);
  const size_t bytes = RowBytes(image.width, image.bitsPerPixel);
  for (int32_t y = 0; y < image.height; ++y) {
    const auto row = static_cast<size_t>(RowAt(order, y, image.height));
    std::memcpy(dib->rec()->bits + row * bytes, image.rows[y], bytes);
  }
  return STATUS_OK;
}

int32_t FromDib(DibRec* dib, RowOrder order, vorlanepic::frame::ScratchImage* image) {
  int32_t width = 0;
  int32_t height = 0;
  uint16_t bits = 0;
  std::memcpy(&width, dib->infoHeader + kWidthAt, sizeof(width));
  std::memcpy(&height, dib->infoHeader + kHeightAt, sizeof(height));
  std::memcpy(&bits, dib->infoHeader + kBitCountAt, sizeof(bits));
  const int32_t status = Imgbuf_New(image->rec(), width, height, bits, 0);
  if (status != STATUS_OK) return status;
  const size_t bytes = RowBytes(width, bits);
  for (int32_t y = 0; y < height; ++y) {
    const auto row = static_cast<size_t>(RowAt(order, y, height));
    std::memcpy(image->rec()->rows[y], dib->bits + row * bytes, bytes);
  }
  return STATUS_OK;
}

}  // namespace vorlane::commands
