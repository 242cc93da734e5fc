#include "rotate/pixel_rule.h"

#include <cstring>

#include "rotate/sampling.h"

namespace vorlanepic::rotate {
namespace {

uint8_t BitMask(int32_t x) { return static_cast<uint8_t>(0x80 >> (x & 7)); }

void PutBit(uint8_t* row, int32_t x, bool isLight) {
  uint8_t& byte = row[x >> 3];
  byte = static_cast<uint8_t>(isLight ? byte | BitMask(x) : byte & ~BitMask(x));
}

bool IsLight(const uint8_t* row, int32_t x) { return (row[x >> 3] & BitMask(x)) != 0; }

void SampleBit(const RotateJob& job, const SourcePoint& point, uint8_t* row, int32_t x) {
  PutBit(row, x, IsLight(job.source.rows[point.baseY], point.baseX));
}

template <typename Sampler, int kBytes>
void SampleBytes(const RotateJob& job, const SourcePoint& point, uint8_t* row, int32_t x) {
  Sampler::Sample(job, point, row + static_cast<size_t>(x) * kBytes);
}

template <typename Kernel, int kBytes>
constexpr auto kInterpolate = SampleBytes<Interpolated<Kernel, kBytes>, kBytes>;
template <int kBytes>
constexpr auto kNearest = SampleBytes<Nearest<kBytes>, kBytes>;

constexpr PixelRule kRules[kPixelKinds] = {
    {PixelKind::kBitNearest, 1, 0, 99, SampleBit},
    {PixelKind::kGreyNearest, 8, 0, 99, kNearest<1>},
    {PixelKind::kGreyBilinear, 8, 1, 9, kInterpolate<Bilinear, 1>},
    {PixelKind::kGreyBicubic, 8, 2, 9, kInterpolate<Bicubic, 1>},
    {PixelKind::kColourNearest, 24, 0, 99, kNearest<3>},
    {PixelKind::kColourBilinear, 24, 1, 9, kInterpolate<Bilinear, 3>},
    {PixelKind::kColourBicubic, 24, 2, 9, kInterpolate<Bicubic, 3>},
};

PixelKind KindOf(int32_t bitsPerPixel, int32_t interpolation) {
  const bool isColour = bitsPerPixel == 24;
  if (bitsPerPixel == 1) return PixelKind::kBitNearest;
  switch (interpolation) {
    case INTERP_BICUBIC:
      return isColour ? PixelKind::kColourBicubic : PixelKind::kGreyBicubic;
    case INTERP_BILINEAR:
      return isColour ? PixelKind::kColourBilinear : PixelKind::kGreyBilinear;
    default:
      return isColour ? PixelKind::kColourNearest : PixelKind::kGreyNearest;
  }
}

}  // namespace

const PixelRule& PixelRuleOf(int32_t bitsPerPixel, int32_t interpolation) {
  return kRules[static_cast<size_t>(KindOf(bitsPerPixel, interpolation))];
}

void FillPixels(const RotateJob& job, uint8_t* row, int32_t first, int32_t last) {
  switch (job.target.bitsPerPixel) {
    case 1:
      for (int32_t x = first; x <= last; ++x) {
        PutBit(row, x, (job.fill[0] & BitMask(x)) != 0);
      }
      break;
    case 8:
      if (first <= last) {
        std::memset(row + first, job.fill[0], static_cast<size_t>(last - first) + 1);
      }
      break;
    default:
      for (int32_t x = first; x <= last; ++x) {
        std::memcpy(row + static_cast<size_t>(x) * 3, job.fill, 3);
      }
  }
}

}  // namespace vorlanepic::rotate
