#include <algorithm>
#include <bit>

#include "analysis/border_scan.h"
#include "analysis/document_mask.h"
#include "analysis/pixel_access.h"
#include "frame/settings.h"

namespace vorlanepic::analysis {
namespace {

// Every eighth row is looked at; the band reaches one row further than the rows skipped.
constexpr int32_t kRowStep = 8;
constexpr int32_t kBandMargin = 9;

// Light pixels that a row of the page exceeds. Method 1 asks for more than dust would give.
constexpr int32_t kMethod1RowLimit = 85;
constexpr int32_t kRowLimit = 1;

// Grey levels above `low`; none for 255.
GreyBand LevelsAbove(uint8_t low) {
  return low == 255 ? GreyBand{1, 0} : GreyBand{static_cast<uint8_t>(low + 1), 255};
}

// Whether more than `limit` pixels of a row are lighter than `low`; at 1 bit, are set.
template <typename Pixel>
bool IsPageRow(const uint8_t* row, int32_t width, uint8_t low, int32_t limit) {
  const DocumentMask<Pixel> isLight(LevelsAbove(low));
  int32_t light = 0;
  for (int32_t x = 0; x < width && light <= limit;) {
    const int32_t count = std::min(kMaskPixels, width - x);
    light += std::popcount(isLight(row, x, count));
    x += count;
  }
  return light > limit;
}

template <typename Pixel>
int32_t FindBandRows(const ImageRec& image, uint8_t low, int32_t limit, frame::PixelRect* band) {
  const auto isPageRow = [&](int64_t y) {
    return IsPageRow<Pixel>(image.rows[y], image.width, low, limit);
  };

  int64_t y = 0;  // one step past the last row need not fit 32 bits
  while (y < image.height && !isPageRow(y)) y += kRowStep;
  if (y >= image.height) return BORDER_NOT_FOUND;
  band->top = static_cast<int32_t>(std::max<int64_t>(y - kBandMargin, 0));

  const int32_t lastRow = image.height - 1;
  if (lastRow <= band->top) {
    band->bottom = lastRow;
  } else {
    y = lastRow;
    while (y > band->top && !isPageRow(y)) y -= kRowStep;
    if (y <= band->top) return BORDER_NOT_FOUND;
    band->bottom = static_cast<int32_t>(std::min<int64_t>(y + kBandMargin, lastRow));
  }
  band->left = 0;
  band->right = image.width - 1;
  return STATUS_OK;
}

}  // namespace

int32_t FindBand(const frame::Settings& settings, const ImageRec& image, uint8_t low,
                 frame::PixelRect* band) {
  const int32_t status = Imgbuf_Check(&image);
  if (status != STATUS_OK) return status;
  const int32_t limit = settings.BorderMethod == 1 ? kMethod1RowLimit : kRowLimit;
  return WithDepth(image.bitsPerPixel, [&](auto pixel) {
    return FindBandRows<decltype(pixel)>(image, low, limit, band);
  });
}

}  // namespace vorlanepic::analysis
