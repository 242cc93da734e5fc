#include "vorlanepic/imgbuf.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "block_memory.h"
#include "frame/dib_header.h"
#include "frame/pixel_format.h"

namespace {

using namespace vorlanepic::frame;

constexpr int32_t kOk = 0;
constexpr int32_t kRefused = 1;
constexpr int32_t kNoMemory = 2;

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

int32_t PaletteEntries(int32_t bitsPerPixel) { return bitsPerPixel <= 8 ? 1 << bitsPerPixel : 0; }

// Black to white in equal steps.
void WriteGreyRamp(uint8_t* palette, int32_t entries) {
  for (int32_t i = 0; i < entries; ++i) {
    const uint32_t grey = static_cast<uint32_t>(i * 255 / (entries - 1));
    StoreDibField(palette, static_cast<size_t>(i) * 4, grey * 0x010101U);
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

int32_t IMGBUF_CALL Imgbuf_Trim() noexcept {
  imgbuf::TrimKeptBlock();
  return kOk;
}

int32_t IMGBUF_CALL Imgbuf_KeepLimit(int32_t bytes) noexcept {
  return static_cast<int32_t>(imgbuf::LimitKeptBytes(static_cast<size_t>(std::max(bytes, 0))));
}

int32_t IMGBUF_CALL ImgbufNew(DibRec* image, int32_t width, int32_t height,
                              int32_t bitsPerPixel) noexcept {
  if (image == nullptr || !IsPossibleShape(width, height, bitsPerPixel)) return kRefused;

  const int32_t entries = PaletteEntries(bitsPerPixel);
  const int32_t headBytes = kDibFileHeaderBytes + kDibInfoHeaderBytes + entries * 4;
  const int64_t pixelBytes = PaddedRowBytes(width, bitsPerPixel) * height;
  if (headBytes + pixelBytes > INT32_MAX) return kRefused;
  auto* file = static_cast<uint8_t*>(
      imgbuf::AllocateBlock(static_cast<size_t>(headBytes) + static_cast<size_t>(pixelBytes)));
  if (file == nullptr) return kNoMemory;

  uint8_t* info = file + kDibFileHeaderBytes;
  file[0] = 0x42;
  file[1] = 0x4D;
  StoreDibField(file, 2, static_cast<uint32_t>(headBytes + pixelBytes));
  StoreDibField(file, 10, headBytes);
  StoreDibField(info, 0, kDibInfoHeaderBytes);
  StoreDibField(info, kDibWidthAt, width);
  StoreDibField(info, kDibHeightAt, height);
  StoreDibField(info, kDibPlanesAt, uint16_t{1});
  StoreDibField(info, kDibBitCountAt, static_cast<uint16_t>(bitsPerPixel));
  StoreDibField(info, kDibImageBytesAt, static_cast<uint32_t>(pixelBytes));
  StoreDibField(info, kDibColoursAt, entries);
  if (entries > 0) WriteGreyRamp(info + kDibInfoHeaderBytes, entries);
  *image = {file, info, nullptr, file + headBytes};
  return kOk;
}

int32_t IMGBUF_CALL ImgbufCheck(const DibRec* image) noexcept {
  if (image == nullptr || image->infoHeader == nullptr || image->bits == nullptr) return kRefused;
  const DibShape shape = ShapeOfDib(image->infoHeader);
  return IsPossibleShape(shape.width, shape.height, shape.bitsPerPixel) ? kOk : kRefused;
}

int32_t IMGBUF_CALL ImgbufDestory(DibRec* image) noexcept {
  if (image == nullptr || image->fileHeader == nullptr) return kRefused;
  imgbuf::ReleaseBlock(image->fileHeader);
  *image = {};
  return kOk;
}
