// Smallest and largest of many pixel values, gathered in 16 lanes so that a short run costs two
// vector operations.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace vorlanepic {

// The range lies between the smallest of `lowest` and the largest of `highest`.
struct ValueRange {
  uint8_t lowest[16];
  uint8_t highest[16];

  uint8_t Smallest() const { return *std::min_element(lowest, lowest + 16); }
  uint8_t Largest() const { return *std::max_element(highest, highest + 16); }
};

// A range that holds no value yet.
inline void Empty(ValueRange* range) {
  std::fill_n(range->lowest, 16, uint8_t{255});
  std::fill_n(range->highest, 16, uint8_t{0});
}

inline void Widen(ValueRange* range, const ValueRange& other) {
  for (int k = 0; k < 16; ++k) {
    range->lowest[k] = std::min(range->lowest[k], other.lowest[k]);
    range->highest[k] = std::max(range->highest[k], other.highest[k]);
  }
}

// Takes in values[0] .. values[count - 1], one after the other.
inline void WidenPlain(ValueRange* range, const uint8_t* values, size_t count) {
  for (size_t k = 0; k < count; ++k) {
    range->lowest[0] = std::min(range->lowest[0], values[k]);
    range->highest[0] = std::max(range->highest[0], values[k]);
  }
}

#if defined(__SSE2__)
namespace value_range_lanes {
// 16 bytes from kMask + 16 - n: the first n lanes are kept.
inline constexpr uint8_t kMask[32] = {255, 255, 255, 255, 255, 255, 255, 255,
                                      255, 255, 255, 255, 255, 255, 255, 255};

inline __m128i Load(const uint8_t* bytes) {
  return _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes));
}

inline void Widen16(ValueRange* range, __m128i low, __m128i high) {
  _mm_storeu_si128(reinterpret_cast<__m128i*>(range->lowest),
                   _mm_min_epu8(Load(range->lowest), low));
  _mm_storeu_si128(reinterpret_cast<__m128i*>(range->highest),
                   _mm_max_epu8(Load(range->highest), high));
}
}  // namespace value_range_lanes

// As WidenPlain; `readable` bytes may be read from `values` on, at least `count`.
inline void Widen(ValueRange* range, const uint8_t* values, size_t count, size_t readable) {
  using namespace value_range_lanes;
  if (readable < 16) {
    WidenPlain(range, values, count);
  } else if (count < 16) {
    const __m128i first = Load(values);
    const __m128i mask = Load(kMask + 16 - count);
    const __m128i others = _mm_xor_si128(mask, _mm_set1_epi8(-1));
    Widen16(range, _mm_or_si128(first, others), _mm_and_si128(first, mask));
  } else {
    // The last 16 may overlap those before them, which changes no range.
    for (size_t k = 0; k < count; k += 16) {
      const __m128i lanes = Load(values + std::min(k, count - 16));
      Widen16(range, lanes, lanes);
    }
  }
}
#else
inline void Widen(ValueRange* range, const uint8_t* values, size_t count, size_t /*readable*/) {
  WidenPlain(range, values, count);
}
#endif

}  // namespace vorlanepic
