#include "deskew/dib_set.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "frame/arithmetic.h"
#include "frame/dib_header.h"
#include "frame/pixel_format.h"
#include "frame/row_table.h"

namespace vorlanepic::deskew {
namespace {

// Sets whose records would take more cannot be in memory with their pixels.
constexpr size_t kMaxSetBytes = INT32_MAX;

int32_t RowBytes(int32_t width, int32_t bitsPerPixel) {
  return static_cast<int32_t>(frame::PaddedRowBytes(width, bitsPerPixel));
}

// A record around the pixels of `image`, as yet without rows.
ImageRec WrapOne(const DibRec& image) {
  ImageRec rec{};
  const frame::DibShape shape = frame::ShapeOfDib(image.infoHeader);
  rec.width = shape.width;
  rec.height = shape.height;
  rec.bitsPerPixel = shape.bitsPerPixel;
  rec.lineBytes = RowBytes(rec.width, rec.bitsPerPixel);
  rec.imageBytes = frame::WrapMul(rec.lineBytes, rec.height);
  rec.pixels = image.bits;
  return rec;
}

size_t RowCount(const ImageRec& image) { return static_cast<size_t>(std::max(image.height, 0)); }

void CopyRows(const ImageRec& from, const DibRec& to) {
  const int32_t lineBytes = RowBytes(from.width, from.bitsPerPixel);
  const auto copied = static_cast<size_t>(std::min(from.lineBytes, lineBytes));
  for (int32_t y = 0; y < from.height; ++y) {
    std::memcpy(to.bits + ptrdiff_t{y} * lineBytes, from.pixels + ptrdiff_t{y} * from.lineBytes,
                copied);
  }
}

}  // namespace

DibSet::~DibSet() {
  for (ImageRec& result : results_.span()) {
    if (result.pixels != nullptr) Imgbuf_Destory(&result);
  }
}

int32_t DibSet::Wrap(const DibRec* images, int32_t count) {
  if (count < 1) return BAD_ARGUMENT;
  const auto setSize = static_cast<size_t>(count);
  if (setSize > kMaxSetBytes / sizeof(ImageRec)) return OUT_OF_MEMORY;
  if (!sources_.Allocate(setSize) || !results_.Allocate(setSize)) return OUT_OF_MEMORY;

  size_t rowCount = 0;
  for (size_t i = 0; i < setSize; ++i) {
    const int32_t status = i > 0 ? ImgbufCheck(&images[i]) : STATUS_OK;
    if (status != STATUS_OK) return status;
    sources_[i] = WrapOne(images[i]);
    rowCount += RowCount(sources_[i]);
  }
  if (!rows_.Allocate(rowCount)) return OUT_OF_MEMORY;

  uint8_t** rows = rows_.data();
  for (ImageRec& source : sources_.span()) {
    frame::LayRows(rows, &source);
    rows += RowCount(source);
  }
  return STATUS_OK;
}

int32_t DibSet::CopyResults(DibRec* outImages) const {
  if (outImages == nullptr) return BAD_ARGUMENT;
  for (size_t i = 0; i < results_.size(); ++i) {
    const ImageRec& result = results_[i];
    const int32_t status =
        ImgbufNew(&outImages[i], result.width, result.height, result.bitsPerPixel);
    if (status != STATUS_OK) return status;
    CopyRows(result, outImages[i]);
  }
  return STATUS_OK;
}

}  // namespace vorlanepic::deskew
