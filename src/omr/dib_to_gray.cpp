#include "omr/dib_to_gray.h"

#include <cstddef>
#include <cstring>
#include <type_traits>

namespace vorlanepic {
namespace {

// A little-endian number of an information header.
template <typename T>
T HeaderField(const uint8_t* header, size_t at) {
  std::make_unsigned_t<T> value = 0;
  for (size_t k = 0; k < sizeof(T); ++k) {
    value = static_cast<decltype(value)>(value | static_cast<decltype(value)>(header[at + k])
                                                     << (8 * k));
  }
  return static_cast<T>(value);
}

// How each depth becomes a row of grey levels.
void GreyRow1(const uint8_t* row, int32_t width, uint8_t* grey) {
  for (int32_t x = 0; x < width; ++x) grey[x] = (row[x >> 3] & (0x80 >> (x & 7))) != 0 ? 255 : 0;
}

void GreyRow8(const uint8_t* row, int32_t width, uint8_t* grey) {
  std::memcpy(grey, row, static_cast<size_t>(width));
}

void GreyRow24(const uint8_t* row, int32_t width, uint8_t* grey) {
  for (int32_t x = 0; x < width; ++x) grey[x] = row[3 * static_cast<size_t>(x) + 2];
}

using GreyRow = void (*)(const uint8_t* row, int32_t width, uint8_t* grey);

GreyRow GreyRowOf(uint16_t bitsPerPixel) {
  switch (bitsPerPixel) {
    case 1:
      return GreyRow1;
    case 8:
      return GreyRow8;
    case 24:
      return GreyRow24;
    default:
      return nullptr;
  }
}

bool IsComplete(const DibRec* image) {
  return image != nullptr && image->fileHeader != nullptr && image->infoHeader != nullptr &&
         image->bits != nullptr && image->fileHeader[0] == 0x42 && image->fileHeader[1] == 0x4D;
}

}  // namespace

bool DibToGray(const DibRec* image, GreyBuffer* grey) {
  if (!IsComplete(image)) return false;
  grey->width = HeaderField<int32_t>(image->infoHeader, 4);
  grey->height = HeaderField<int32_t>(image->infoHeader, 8);
  const auto bitsPerPixel = HeaderField<uint16_t>(image->infoHeader, 14);
  const GreyRow greyRow = GreyRowOf(bitsPerPixel);
  if (grey->width < 1 || grey->height < 1 || greyRow == nullptr) return false;

  const auto width = static_cast<size_t>(grey->width);
  const auto height = static_cast<size_t>(grey->height);
  const uint64_t lineBytes = (static_cast<uint64_t>(width) * bitsPerPixel + 31) / 32 * 4;
  // The image library has no larger images: such a header lies about the rows behind it.
  if (lineBytes > INT32_MAX / static_cast<uint64_t>(height)) return false;
  if (width > SIZE_MAX / height || !grey->pixels.Allocate(width * height)) return false;
  for (size_t y = 0; y < height; ++y) {
    const uint8_t* row = image->bits + static_cast<size_t>(lineBytes) * (height - 1 - y);
    greyRow(row, grey->width, grey->pixels.data() + y * width);
  }
  return true;
}

}  // namespace vorlanepic
