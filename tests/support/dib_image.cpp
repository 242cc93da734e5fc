#include "support/dib_image.h"

#include <cstddef>
#include <cstring>

namespace vorlanepic::testing {
namespace {

int32_t RowBytes(int32_t width, int32_t bitsPerPixel) {
  return (width * bitsPerPixel + 31) / 32 * 4;
}

}  // namespace

TestDib::TestDib(const TestImage& image, int32_t pixelsPerMetre)
    : fileHeader_(14), infoHeader_(40) {
  const ImageRec& source = *image.rec();
  const auto rowBytes = static_cast<size_t>(RowBytes(source.width, source.bitsPerPixel));
  bits_.resize(rowBytes * static_cast<size_t>(source.height));
  for (int32_t y = 0; y < source.height; ++y) {
    std::memcpy(&bits_[static_cast<size_t>(source.height - 1 - y) * rowBytes], image.row(y),
                rowBytes);
  }
  fileHeader_[0] = 0x42;
  fileHeader_[1] = 0x4D;
  rec_ = {fileHeader_.data(), infoHeader_.data(), nullptr, bits_.data()};
  SetField(0, 40);
  SetField(4, source.width);
  SetField(8, source.height);
  SetField(12, source.bitsPerPixel << 16 | 1);
  SetField(24, pixelsPerMetre);
}

void TestDib::SetField(int32_t offset, int32_t value) {
  std::memcpy(rec_.infoHeader + offset, &value, sizeof value);
}

int32_t DibField(const DibRec& dib, int32_t offset) {
  int32_t value = 0;
  std::memcpy(&value, dib.infoHeader + offset, sizeof value);
  return value;
}

bool SameRows(const DibRec& dib, const ImageRec& image) {
  const int32_t bitsPerPixel = DibField(dib, 12) >> 16;
  if (DibField(dib, 4) != image.width || DibField(dib, 8) != image.height ||
      bitsPerPixel != image.bitsPerPixel) {
    return false;
  }
  const int32_t rowBytes = RowBytes(image.width, bitsPerPixel);
  for (int32_t y = 0; y < image.height; ++y) {
    const uint8_t* row = dib.bits + ptrdiff_t{y} * rowBytes;
    if (std::memcmp(row, image.rows[y], static_cast<size_t>(rowBytes)) != 0) return false;
  }
  return true;
}

}  // namespace vorlanepic::testing
