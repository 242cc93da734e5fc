#include "deskew/image_region.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "frame/arithmetic.h"
#include "frame/pixel_format.h"
#include "frame/trigonometry.h"
#include "rotate/rotate_image.h"
#include "rotate/row_spans.h"

namespace vorlanepic::deskew {
namespace {

// pi as this library takes it, and half a turn's inverse.
constexpr double kPi = 3.1415926;
constexpr double kPerHalfTurn = 0.005555555555555556;

rotate::Turn TurnOfRegion(const frame::PixelRect& region, double angleDegrees,
                          int32_t interpolation) {
  rotate::Turn turn{};
  turn.angle = angleDegrees * kPi * kPerHalfTurn;
  turn.interpolation = interpolation;
  turn.centerX = region.left + region.width() / 2;
  turn.centerY = region.top + region.height() / 2;
  const double cosine = std::abs(frame::Cosine(turn.angle));
  const double sine = std::abs(frame::Sine(turn.angle));
  turn.outWidth = frame::RoundToInt32(region.width() * cosine + region.height() * sine);
  turn.outHeight = frame::RoundToInt32(region.width() * sine + region.height() * cosine);
  return turn;
}

// The bits x..x + width - 1 of a row, moved to the front; the rest of the last byte is 0.
void CopyBits(const uint8_t* src, int32_t left, int32_t width, uint8_t* dst) {
  src += left >> 3;
  const int shift = left & 7;
  const auto wholeBytes = static_cast<size_t>(width >> 3);
  const int rest = width & 7;
  if (shift == 0) {
    std::memcpy(dst, src, wholeBytes);
  } else {
    for (size_t i = 0; i < wholeBytes; ++i) {
      dst[i] = static_cast<uint8_t>(src[i] << shift | src[i + 1] >> (8 - shift));
    }
  }
  if (rest == 0) return;
  int last = src[wholeBytes] << shift;
  if (shift + rest > 8) last |= src[wholeBytes + 1] >> (8 - shift);
  dst[wholeBytes] = static_cast<uint8_t>(last & (0xFF << (8 - rest)));
}

void CopyRow(const uint8_t* src, int32_t bitsPerPixel, const frame::PixelRect& region,
             uint8_t* dst) {
  if (bitsPerPixel == 1) {
    CopyBits(src, region.left, region.width(), dst);
    return;
  }
  const auto pixelBytes = static_cast<size_t>(bitsPerPixel / 8);
  std::memcpy(dst, src + static_cast<size_t>(region.left) * pixelBytes,
              static_cast<size_t>(region.width()) * pixelBytes);
}

bool IsInside(const frame::PixelRect& region, const ImageRec& image) {
  return region.left >= 0 && region.right < image.width && region.top >= 0 &&
         region.bottom < image.height && region.left <= region.right + 1 &&
         region.top <= region.bottom + 1;
}

}  // namespace

int32_t RotateImageRegion(const ImageRec* src, ImageRec* dst, const uint8_t* fill,
                          const frame::PixelRect& region, double angleDegrees,
                          int32_t interpolation) {
  if (src == nullptr || region.left < 0 || region.top < 0 || region.bottom < region.top) {
    return BAD_ARGUMENT;
  }
  rotate::RowSpans spans;
  spans.top = region.top;
  spans.bottom = region.bottom;
  if (!spans.spans.Allocate(static_cast<size_t>(region.bottom) + 1)) return OUT_OF_MEMORY;
  // One column beyond the region takes part, where the image has it.
  const int64_t beyond = int64_t{region.right} + 1;
  const rotate::RowSpan span{
      region.left, static_cast<int32_t>(std::min<int64_t>(beyond, std::max(src->width, 0) - 1))};
  std::ranges::fill(spans.spans.span().subspan(static_cast<size_t>(region.top)), span);
  return rotate::RotateImage(src, dst, &spans, TurnOfRegion(region, angleDegrees, interpolation),
                             fill);
}

int32_t CopyImageRegion(const ImageRec* src, ImageRec* dst, const frame::PixelRect& region) {
  if (src == nullptr || dst == nullptr) return BAD_ARGUMENT;
  if (!frame::IsPageDepth(src->bitsPerPixel) || !IsInside(region, *src)) return BAD_ARGUMENT;

  const int32_t status = Imgbuf_New(dst, region.width(), region.height(), src->bitsPerPixel, 1);
  if (status != STATUS_OK) return status;
  for (int32_t row = 0; row < region.height(); ++row) {
    const uint8_t* line = src->pixels + (ptrdiff_t{region.top} + row) * src->lineBytes;
    CopyRow(line, src->bitsPerPixel, region, dst->pixels + ptrdiff_t{row} * dst->lineBytes);
  }
  return STATUS_OK;
}

}  // namespace vorlanepic::deskew
