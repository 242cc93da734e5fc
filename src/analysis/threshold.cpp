#include "analysis/threshold.h"

#include "analysis/pixel_access.h"
#include "frame/arithmetic.h"

namespace vorlanepic::analysis {
namespace {

// Grey levels of the two outer columns on each side; in narrow images the sides share columns.
template <typename Pixel>
int32_t SumOuterColumns(const ImageRec& image) {
  int32_t sum = 0;
  for (int32_t y = 0; y < image.height; ++y) {
    const uint8_t* row = image.rows[y];
    const int32_t levels = Pixel::Level(row, 0) + Pixel::Level(row, 1) +
                           Pixel::Level(row, image.width - 2) + Pixel::Level(row, image.width - 1);
    sum = frame::WrapAdd(sum, levels);
  }
  return sum;
}

}  // namespace

int32_t EstimateThreshold(const ImageRec& image, uint8_t* threshold) {
  const int32_t status = Imgbuf_Check(&image);
  if (status != STATUS_OK) return status;
  if (image.width < 2) return BAD_ARGUMENT;

  return WithDepth(image.bitsPerPixel, [&](auto pixel) -> int32_t {
    const double mean = SumOuterColumns<decltype(pixel)>(image) / (4.0 * image.height);
    *threshold = static_cast<uint8_t>(frame::RoundToInt32(mean));
    return STATUS_OK;
  });
}

}  // namespace vorlanepic::analysis
