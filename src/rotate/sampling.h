// The value of one output pixel, by kind of pixel: the definition that every faster way must meet.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "rotate/rotate_job.h"
#include "rotate/weights.h"

namespace vorlanepic::rotate {

// The pixels along one axis that a value is blended from, and how far the sample lies behind the
// middle pair's first one, in tenths of a pixel (0..10).
template <int kTaps>
struct Taps {
  int32_t at[kTaps];
  size_t phase;
};

// Places the taps around an offset cut to whole tenths toward the centre. `base` is the base pixel;
// taps outside lowest..highest are replaced by it.
template <int kTaps>
Taps<kTaps> PlaceTaps(int32_t offset, int32_t base, int32_t lowest, int32_t highest) {
  Taps<kTaps> taps{};
  const auto size = static_cast<uint32_t>(frame::WrapAbs(offset));
  const size_t digit = size / 10 % 10;
  taps.phase = offset >= 0 ? digit : 10 - digit;
  const int32_t first = base - (kTaps / 2 - 1) - (offset >= 0 ? 0 : 1);
  for (int32_t i = 0; i < kTaps; ++i) {
    const int32_t at = first + i;
    taps.at[i] = at >= lowest && at <= highest ? at : base;
  }
  return taps;
}

// The nearest byte, or three, of a source.
template <int kBytes>
struct Nearest {
  static void Sample(const RotateJob& job, const SourcePoint& point, uint8_t* out) {
    std::memcpy(out, job.source.rows[point.baseY] + static_cast<size_t>(point.baseX) * kBytes,
                kBytes);
  }
};

// A kernel over kTaps x kTaps pixels, for each of a pixel's kBytes bytes.
template <typename Kernel, int kBytes>
struct Interpolated {
  static void Sample(const RotateJob& job, const SourcePoint& point, uint8_t* out) {
    constexpr int kTaps = Kernel::kTaps;
    const RowSpan span = job.SpanOf(point.baseY);
    const auto columns = PlaceTaps<kTaps>(point.offsetX, point.baseX, span.left, span.right);
    const auto rows =
        PlaceTaps<kTaps>(point.offsetY, point.baseY, job.region.top, job.region.bottom);
    for (size_t byte = 0; byte < kBytes; ++byte) {
      uint8_t pixels[kTaps][kTaps];
      for (int32_t r = 0; r < kTaps; ++r) {
        const uint8_t* row = job.source.rows[rows.at[r]];
        for (int32_t c = 0; c < kTaps; ++c) {
          pixels[r][c] = row[static_cast<size_t>(columns.at[c]) * kBytes + byte];
        }
      }
      out[byte] = Kernel::Blend(pixels, columns.phase, rows.phase);
    }
  }
};

struct Bilinear {
  static constexpr int kTaps = 2;

  static uint8_t Mix(uint8_t a, uint8_t b, size_t phase) {
    return static_cast<uint8_t>(kBlendTable[10 - phase][a] + kBlendTable[phase][b]);
  }
  static uint8_t Blend(const uint8_t (&p)[2][2], size_t phaseX, size_t phaseY) {
    return Mix(Mix(p[0][0], p[0][1], phaseX), Mix(p[1][0], p[1][1], phaseX), phaseY);
  }
};

struct Bicubic {
  static constexpr int kTaps = 4;

  static uint8_t Blend(const uint8_t (&p)[4][4], size_t phaseX, size_t phaseY) {
    const auto& wx = kCubicWeights[phaseX];
    const auto& wy = kCubicWeights[phaseY];
    int32_t sum = 0;
    for (size_t r = 0; r < 4; ++r) {
      // Right shifts of negative sums round toward minus infinity.
      const int32_t row =
          (p[r][0] * wx[0] + p[r][1] * wx[1] + p[r][2] * wx[2] + p[r][3] * wx[3]) >> 10;
      sum += row * wy[r];
    }
    return static_cast<uint8_t>(std::clamp(sum, 0, 255 << 10) >> 10);
  }
};

}  // namespace vorlanepic::rotate
