#include <cstring>

#include "rotate/kernels.h"
#include "rotate/sampling.h"

namespace vorlanepic::rotate {
namespace {

struct Place {
  const uint8_t* pixel;  // byte of the pixel that the sample lies on or behind
  int32_t column;        // from the origin; at 1 bit from the first bit of the origin's byte
  size_t phaseX;
  size_t phaseY;
};

template <int kBytes>
Place PlaceOf(const PixelRun& run, int32_t i) {
  const uint32_t x = static_cast<uint16_t>(run.stepX[i] + run.startX);
  const uint32_t y = static_cast<uint16_t>(run.stepY[i] + run.startY);
  const auto column = static_cast<int32_t>(x / 100);
  const auto row = static_cast<ptrdiff_t>(y / 100);
  return {run.origin + row * run.sourceLine + ptrdiff_t{column} * kBytes, column + run.originBit,
          x % 100 / 10, y % 100 / 10};
}

void BitNearest(const PixelRun& run) {
  for (int32_t i = 0; i < run.count; i += 8) {
    uint32_t bits = 0;
    for (int32_t k = i; k < i + 8; ++k) {
      const Place place = PlaceOf<0>(run, k);
      bits = bits << 1 | (place.pixel[place.column >> 3] >> (7 - (place.column & 7)) & 1U);
    }
    run.out[i / 8] = static_cast<uint8_t>(bits);
  }
}

template <int kBytes>
void BytesNearest(const PixelRun& run) {
  uint8_t* out = run.out;
  for (int32_t i = 0; i < run.count; ++i, out += kBytes) {
    std::memcpy(out, PlaceOf<kBytes>(run, i).pixel, kBytes);
  }
}

template <typename Kernel, int kBytes>
void BytesInterpolated(const PixelRun& run) {
  constexpr int kTaps = Kernel::kTaps;
  constexpr int kBefore = kTaps / 2 - 1;
  uint8_t* out = run.out;
  for (int32_t i = 0; i < run.count; ++i) {
    const Place place = PlaceOf<kBytes>(run, i);
    const uint8_t* first = place.pixel - kBefore * (run.sourceLine + kBytes);
    for (int byte = 0; byte < kBytes; ++byte) {
      uint8_t pixels[kTaps][kTaps];
      for (int r = 0; r < kTaps; ++r) {
        for (int c = 0; c < kTaps; ++c) {
          pixels[r][c] = first[r * run.sourceLine + c * kBytes + byte];
        }
      }
      *out++ = Kernel::Blend(pixels, place.phaseX, place.phaseY);
    }
  }
}

}  // namespace

const KernelTable kScalarKernels = {{{BitNearest},
                                     {BytesNearest<1>},
                                     {BytesInterpolated<Bilinear, 1>},
                                     {BytesInterpolated<Bicubic, 1>},
                                     {BytesNearest<3>},
                                     {BytesInterpolated<Bilinear, 3>},
                                     {BytesInterpolated<Bicubic, 3>}}};

}  // namespace vorlanepic::rotate
