#include "rotate/plain_rotation.h"

#include <cstring>

#include "rotate/sampling.h"

namespace vorlanepic {
namespace {

// Pixels outside the region: every pixel of a 24-bit row, or all bytes of a row, padding included.
void FillRow(const RotateJob& job, uint8_t* row) {
  if (job.target.bitsPerPixel != 24) {
    std::memset(row, job.fill[0], static_cast<size_t>(job.target.lineBytes));
    return;
  }
  for (int32_t x = 0; x < job.target.width; ++x, row += 3) std::memcpy(row, job.fill, 3);
}

void SetBit(uint8_t* row, int32_t x, bool isLight) {
  const auto mask = static_cast<uint8_t>(0x80 >> (x & 7));
  uint8_t& byte = row[x >> 3];
  byte = static_cast<uint8_t>(isLight ? byte | mask : byte & ~mask);
}

bool IsLight(const uint8_t* row, int32_t x) { return (row[x >> 3] & (0x80 >> (x & 7))) != 0; }

template <typename PutPixel>
void RotateRows(const RotateJob& job, int32_t first, int32_t last, PutPixel putPixel) {
  for (int32_t y = first; y <= last; ++y) {
    uint8_t* row = job.target.rows[y];
    FillRow(job, row);
    for (int32_t x = 0; x < job.target.width; ++x) {
      const SourcePoint point = SourcePointOf(job, x, y);
      if (IsInRegion(job, point)) putPixel(point, row, x);
    }
  }
}

template <typename Sampler, int kBytes>
void RotateByteRows(const RotateJob& job, int32_t first, int32_t last) {
  RotateRows(job, first, last, [&job](const SourcePoint& point, uint8_t* row, int32_t x) {
    Sampler::Sample(job, point, row + static_cast<size_t>(x) * kBytes);
  });
}

void RotateBitRows(const RotateJob& job, int32_t first, int32_t last) {
  RotateRows(job, first, last, [&job](const SourcePoint& point, uint8_t* row, int32_t x) {
    SetBit(row, x, IsLight(job.source.rows[point.baseY], point.baseX));
  });
}

template <int kBytes>
void RotateByInterpolation(const RotateJob& job, int32_t first, int32_t last) {
  switch (job.turn.interpolation) {
    case INTERP_BICUBIC:
      return RotateByteRows<Interpolated<Bicubic, kBytes>, kBytes>(job, first, last);
    case INTERP_BILINEAR:
      return RotateByteRows<Interpolated<Bilinear, kBytes>, kBytes>(job, first, last);
    default:
      return RotateByteRows<Nearest<kBytes>, kBytes>(job, first, last);
  }
}

}  // namespace

void RotateRowsPlain(const RotateJob& job, int32_t first, int32_t last) {
  switch (job.source.bitsPerPixel) {
    case 1:
      return RotateBitRows(job, first, last);
    case 8:
      return RotateByInterpolation<1>(job, first, last);
    default:
      return RotateByInterpolation<3>(job, first, last);
  }
}

}  // namespace vorlanepic
