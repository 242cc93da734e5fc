#include "vorlanepic/imgbuf.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "block_memory.h"

namespace {

constexpr int32_t kOk = 0;
constexpr int32_t kRefused = 1;
constexpr int32_t kNoMemory = 2;

constexpr int32_t kFileHeaderBytes = 14;
constexpr int32_t kInfoHeaderBytes = 40;

bool IsKnownDepth(int32_t bitsPerPixel) {
  switch (bitsPerPixel) {
    case 1:
    case 4:
    case 8:
    case 16:
    case 24:
    case 32:
      return true;
    default:
      return false;
  }
}

// Bytes of a row padded to 4 bytes; at most 2^33, so 64 bits hold every product with a height.
int64_t PaddedRowBytes(int32_t width, int32_t bitsPerPixel) {
  return (int64_t{width} * bitsPerPixel + 31) / 32 * 4;
}

// Whether an image of this shape can be had: its pixels are counted in an int32.
bool IsPossibleShape(int32_t width, int32_t height, int32_t bitsPerPixel) {
  return width >= 1 && height >= 1 && IsKnownDepth(bitsPerPixel) &&
         PaddedRowBytes(width, bitsPerPixel) <= INT32_MAX / int64_t{height};
}

// The row table of an image, padded so that the pixels behind it are aligned.
int64_t RowTableBytes(int32_t height) {
  constexpr int64_t kStep = imgbuf::kBlockAlignment;
  return (height * int64_t{sizeof(uint8_t*)} + kStep - 1) / kStep * kStep;
}

template <typename T>
void Store(uint8_t* header, size_t offset, T value) {
  std::memcpy(header + offset, &value, sizeof value);
}

template <typename T>
T Load(const uint8_t* header, size_t offset) {
  T value;
  std::memcpy(&value, header + offset, sizeof value);
  return value;
}

int32_t PaletteEntries(int32_t bitsPerPixel) { return bitsPerPixel <= 8 ? 1 << bitsPerPixel : 0; }

// Black to white in equal steps.
void WriteGreyRamp(uint8_t* palette, int32_t entries) {
  for (int32_t i = 0; i < entries; ++i) {
    const uint32_t grey = static_cast<uint32_t>(i * 255 / (entries - 1));
    Store(palette, static_cast<size_t>(i) * 4, grey * 0x010101U);
  }
}

}  // namespace

int32_t IMGBUF_CALL Imgbuf_New(ImageRec* image, int32_t width, int32_t height, int32_t bitsPerPixel,
                               int32_t /*flag*/) noexcept {
  if (image == nullptr || !IsPossibleShape(width, height, bitsPerPixel)) return kRefused;

  // One block: the row table, padded to an alignment step, then the pixels.
  const int64_t tableBytes = RowTableBytes(height);
  const int64_t lineBytes = PaddedRowBytes(width, bitsPerPixel);
  const int64_t imageBytes = lineBytes * height;
  if (tableBytes + imageBytes > INT32_MAX) return kRefused;
  void* block = imgbuf::AllocateBlock(static_cast<size_t>(tableBytes + imageBytes));
  if (block == nullptr) return kNoMemory;

  auto** rows = static_cast<uint8_t**>(block);
  uint8_t* pixels = static_cast<uint8_t*>(block) + tableBytes;
  for (int32_t y = 0; y < height; ++y) rows[y] = pixels + y * lineBytes;
  *image = {width,
            height,
            bitsPerPixel,
            static_cast<int32_t>(imageBytes),
            static_cast<int32_t>(lineBytes),
            rows,
            pixels};
  return kOk;
}

int32_t IMGBUF_CALL Imgbuf_Check(const ImageRec* image) noexcept {
  if (image == nullptr || image->rows == nullptr || image->pixels == nullptr) return kRefused;
  if (image->width < 1 || image->height < 1 || !IsKnownDepth(image->bitsPerPixel)) return kRefused;
  const int64_t rowBytes = (int64_t{image->width} * image->bitsPerPixel + 7) / 8;
  if (image->lineBytes < rowBytes) return kRefused;
  return int64_t{image->lineBytes} * image->height == image->imageBytes ? kOk : kRefused;
}

int32_t IMGBUF_CALL Imgbuf_Destory(ImageRec* image) noexcept {
  if (image == nullptr || image->pixels == nullptr) return kRefused;
  imgbuf::ReleaseBlock(image->rows);
  *image = {};
  return kOk;
}

int32_t IMGBUF_CALL ImgbufNew(DibRec* image, int32_t width, int32_t height,
                              int32_t bitsPerPixel) noexcept {
  if (image == nullptr || !IsPossibleShape(width, height, bitsPerPixel)) return kRefused;

  const int32_t entries = PaletteEntries(bitsPerPixel);
  const int32_t headBytes = kFileHeaderBytes + kInfoHeaderBytes + entries * 4;
  const int64_t pixelBytes = PaddedRowBytes(width, bitsPerPixel) * height;
  if (headBytes + pixelBytes > INT32_MAX) return kRefused;
  auto* file = static_cast<uint8_t*>(
      imgbuf::AllocateBlock(static_cast<size_t>(headBytes) + static_cast<size_t>(pixelBytes)));
  if (file == nullptr) return kNoMemory;

  uint8_t* info = file + kFileHeaderBytes;
  file[0] = 0x42;
  file[1] = 0x4D;
  Store(file, 2, static_cast<uint32_t>(headBytes + pixelBytes));
  Store(file, 10, headBytes);
  Store(info, 0, kInfoHeaderBytes);
  Store(info, 4, width);
  Store(info, 8, height);
  Store(info, 12, uint16_t{1});  // planes
  Store(info, 14, static_cast<uint16_t>(bitsPerPixel));
  Store(info, 20, static_cast<uint32_t>(pixelBytes));
  Store(info, 32, entries);
  if (entries > 0) WriteGreyRamp(info + kInfoHeaderBytes, entries);
  *image = {file, info, nullptr, file + headBytes};
  return kOk;
}

int32_t IMGBUF_CALL ImgbufCheck(const DibRec* image) noexcept {
  if (image == nullptr || image->infoHeader == nullptr || image->bits == nullptr) return kRefused;
  const bool possible =
      IsPossibleShape(Load<int32_t>(image->infoHeader, 4), Load<int32_t>(image->infoHeader, 8),
                      Load<uint16_t>(image->infoHeader, 14));
  return possible ? kOk : kRefused;
}

int32_t IMGBUF_CALL ImgbufDestory(DibRec* image) noexcept {
  if (image == nullptr || image->fileHeader == nullptr) return kRefused;
  imgbuf::ReleaseBlock(image->fileHeader);
  *image = {};
  return kOk;
}
