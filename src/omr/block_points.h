// Writes runs of pixels into the point lists of blocks.
#pragma once

#include <cstddef>
#include <cstdint>

#include "omr/row_runs.h"
#include "vorlanepic/vorlanepic.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace vorlanepic {

// The rest of a piece of a point list, next .. end - 1, that is written front to back. What lies
// behind the points written so far may be overwritten.
struct PointCursor {
  BlockPoint* next;
  BlockPoint* end;
};

// Coordinates beyond 65535 are cut to 16 bits.
inline void WriteRunPlain(PointCursor* cursor, const PixelRun& run, int32_t y) {
  for (int32_t x = run.start; x < run.end; ++x) {
    *cursor->next++ = {static_cast<uint16_t>(x), static_cast<uint16_t>(y)};
  }
}

#if defined(__SSE2__)
// As WriteRunPlain, eight points at a time while the piece has room for eight.
inline void WriteRun(PointCursor* cursor, const PixelRun& run, int32_t y) {
  static_assert(sizeof(BlockPoint) == 4);
  constexpr int32_t kStep = 8;
  // Lanes of 16 bits: x in the even ones, y in the odd ones, so that x wraps without touching y.
  const __m128i step = _mm_set1_epi32(4);
  const auto corner = static_cast<uint32_t>(run.start & 0xFFFF) | static_cast<uint32_t>(y) << 16;
  __m128i points =
      _mm_add_epi16(_mm_set1_epi32(static_cast<int32_t>(corner)), _mm_set_epi32(3, 2, 1, 0));
  int32_t x = run.start;
  while (x < run.end && cursor->end - cursor->next >= kStep) {
    const __m128i later = _mm_add_epi16(points, step);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(cursor->next), points);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(cursor->next + 4), later);
    points = _mm_add_epi16(later, step);
    const int32_t written = run.end - x < kStep ? run.end - x : kStep;
    cursor->next += written;
    x += written;
  }
  WriteRunPlain(cursor, {x, run.end}, y);
}
#else
inline void WriteRun(PointCursor* cursor, const PixelRun& run, int32_t y) {
  WriteRunPlain(cursor, run, y);
}
#endif

}  // namespace vorlanepic
