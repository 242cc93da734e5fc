// Writes runs of pixels into the point lists of blocks.
#pragma once

#include <cstddef>
#include <cstdint>

#include "omr/row_runs.h"
#include "vorlanepic/vorlanepic.h"

#if defined(VORLANEPIC_X86)
#include <emmintrin.h>
#endif

namespace vorlanepic::omr {

// Points behind a list's end that WriteRun may overwrite.
inline constexpr size_t kSparePoints = 3;

// Writes the points of a run in row `y` to `points` and returns where the next one goes.
// Coordinates beyond 65535 are cut to 16 bits.
inline BlockPoint* WriteRunPlain(BlockPoint* points, const PixelRun& run, int32_t y) {
  for (int32_t x = run.start; x < run.end; ++x) {
    *points++ = {static_cast<uint16_t>(x), static_cast<uint16_t>(y)};
  }
  return points;
}

#if defined(VORLANEPIC_X86)
// As WriteRunPlain, four points at a time.
inline BlockPoint* WriteRun(BlockPoint* points, const PixelRun& run, int32_t y) {
  static_assert(sizeof(BlockPoint) == 4);
  constexpr ptrdiff_t kStep = kSparePoints + 1;
  // Lanes of 16 bits: x in the even ones, y in the odd ones, so that x wraps without touching y.
  const __m128i step = _mm_set1_epi32(kStep);
  const auto corner = static_cast<uint32_t>(run.start & 0xFFFF) | static_cast<uint32_t>(y) << 16;
  __m128i next =
      _mm_add_epi16(_mm_set1_epi32(static_cast<int32_t>(corner)), _mm_set_epi32(3, 2, 1, 0));
  BlockPoint* const end = points + Length(run);
  for (; points < end; points += kStep) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(points), next);
    next = _mm_add_epi16(next, step);
  }
  return end;
}
#else
inline BlockPoint* WriteRun(BlockPoint* points, const PixelRun& run, int32_t y) {
  return WriteRunPlain(points, run, y);
}
#endif

}  // namespace vorlanepic::omr
