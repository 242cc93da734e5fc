#include "app/commands/dib_image.h"

#include <cstddef>
#include <cstring>

#include "frame/dib_header.h"
#include "frame/pixel_format.h"
#include "vorlanepic/vorlanepic.h"

namespace vorlane::commands {
namespace {

namespace frame = vorlanepic::frame;

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
  frame::StoreDibField(dib->rec()->infoHeader, frame::kDibPixelsPerMetreXAt, perMetre);
  frame::StoreDibField(dib->rec()->infoHeader, frame::kDibPixelsPerMetreYAt, perMetre);
  const auto bytes = static_cast<size_t>(frame::PaddedRowBytes(image.width, image.bitsPerPixel));
  for (int32_t y = 0; y < image.height; ++y) {
    const auto row = static_cast<size_t>(RowAt(order, y, image.height));
    std::memcpy(dib->rec()->bits + row * bytes, image.rows[y], bytes);
  }
  return STATUS_OK;
}

int32_t FromDib(DibRec* dib, RowOrder order, frame::ScratchImage* image) {
  const frame::DibShape shape = frame::ShapeOfDib(dib->infoHeader);
  const int32_t status = Imgbuf_New(image->rec(), shape.width, shape.height, shape.bitsPerPixel, 0);
  if (status != STATUS_OK) return status;
  const auto bytes = static_cast<size_t>(frame::PaddedRowBytes(shape.width, shape.bitsPerPixel));
  for (int32_t y = 0; y < shape.height; ++y) {
    const auto row = static_cast<size_t>(RowAt(order, y, shape.height));
    std::memcpy(image->rec()->rows[y], dib->bits + row * bytes, bytes);
  }
  return STATUS_OK;
}

}  // namespace vorlane::commands
