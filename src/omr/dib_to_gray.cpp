#include "omr/dib_to_gray.h"

#include <array>
#include <cstddef>
#include <cstring>

#include "frame/dib_header.h"
#include "frame/large_pages.h"
#include "frame/pixel_format.h"
#include "frame/processor.h"

namespace vorlanepic::omr {
namespace {

// The grey levels of a byte of eight bits.
using EightLevels = std::array<uint8_t, 8>;

constexpr std::array<EightLevels, 256> MakeLevelsOfByte() {
  std::array<EightLevels, 256> levels{};
  for (size_t byte = 0; byte < 256; ++byte) {
    for (size_t k = 0; k < 8; ++k) levels[byte][k] = (byte & (0x80U >> k)) != 0 ? 255 : 0;
  }
  return levels;
}

constexpr std::array<EightLevels, 256> kLevelsOfByte = MakeLevelsOfByte();

// How each depth becomes a row of grey levels.
void GreyRow1(const uint8_t* row, size_t width, uint8_t* grey) {
  const size_t whole = width / 8;
  for (size_t i = 0; i < whole; ++i) std::memcpy(grey + 8 * i, kLevelsOfByte[row[i]].data(), 8);
  if (width % 8 != 0) std::memcpy(grey + 8 * whole, kLevelsOfByte[row[whole]].data(), width % 8);
}

void GreyRow24(const uint8_t* row, size_t width, uint8_t* grey) {
  for (size_t x = 0; x < width; ++x) grey[x] = row[3 * x + 2];
}

#if defined(VORLANEPIC_X86)
// Where there are byte shuffles, the compiler makes vector code of the same loop.
__attribute__((target("ssse3"))) void GreyRow24Shuffled(const uint8_t* row, size_t width,
                                                        uint8_t* grey) {
  for (size_t x = 0; x < width; ++x) grey[x] = row[3 * x + 2];
}
#endif

using GreyRow = void (*)(const uint8_t* row, size_t width, uint8_t* grey);

GreyRow BestGreyRow24() {
#if defined(VORLANEPIC_X86)
  if (frame::HasByteShuffle()) return GreyRow24Shuffled;
#endif
  return GreyRow24;
}

bool IsComplete(const DibRec* image) {
  return image != nullptr && image->fileHeader != nullptr && image->infoHeader != nullptr &&
         image->bits != nullptr && image->fileHeader[0] == 0x42 && image->fileHeader[1] == 0x4D;
}

}  // namespace

bool DibToGray(const DibRec* image, GreyImage* grey) {
  if (!IsComplete(image)) return false;
  const frame::DibShape shape = frame::ShapeOfDib(image->infoHeader);
  const int32_t width = shape.width;
  const int32_t height = shape.height;
  const int32_t bitsPerPixel = shape.bitsPerPixel;
  if (width < 1 || height < 1) return false;
  if (!frame::IsPageDepth(bitsPerPixel)) return false;

  const int64_t lineBytes = frame::PaddedRowBytes(width, bitsPerPixel);
  // The image library has no larger images: such a header lies about the rows behind it.
  if (lineBytes > INT32_MAX / height) return false;
  const auto line = static_cast<ptrdiff_t>(lineBytes);
  const uint8_t* top = image->bits + line * (height - 1);
  if (bitsPerPixel == 8) {
    grey->view = {top, height, width, -line};
    return true;
  }
  const auto rowPixels = static_cast<size_t>(width);
  const uint64_t pixels = static_cast<uint64_t>(rowPixels) * static_cast<uint64_t>(height);
  if (pixels > SIZE_MAX || !grey->own.Grow(static_cast<size_t>(pixels))) return false;
  frame::AdviseLargePages(grey->own.data(), static_cast<size_t>(pixels));
  const GreyRow greyRow = bitsPerPixel == 1 ? GreyRow1 : BestGreyRow24();
  for (int32_t y = 0; y < height; ++y) {
    greyRow(top - y * line, rowPixels, grey->own.data() + static_cast<size_t>(y) * rowPixels);
  }
  grey->view = {grey->own.data(), height, width};
  return true;
}

}  // namespace vorlanepic::omr
