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
};

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

inline void Store(uint8_t* bytes, __m128i lanes) {
  _mm_storeu_si128(reinterpret_cast<__m128i*>(bytes), lanes);
}

inline void Widen16(ValueRange* range, __m128i low, __m128i high) {
  Store(range->lowest, _mm_min_epu8(Load(range->lowest), low));
  Store(range->highest, _mm_max_epu8(Load(range->highest), high));
}
}  // namespace value_range_lanes

inline void Empty(ValueRange* range) {
  value_range_lanes::Store(range->lowest, _mm_set1_epi8(-1));
  value_range_lanes::Store(range->highest, _mm_setzero_si128());
}

inline void Widen(ValueRange* range, const ValueRange& other) {
  using namespace value_range_lanes;
  Widen16(range, Load(other.lowest), Load(other.highest));
}

inline uint8_t Smallest(const ValueRange& range) {
  __m128i lanes = value_range_lanes::Load(range.lowest);
  lanes = _mm_min_epu8(lanes, _mm_srli_si128(lanes, 8));
  lanes = _mm_min_epu8(lanes, _mm_srli_si128(lanes, 4));
  lanes = _mm_min_epu8(lanes, _mm_srli_si128(lanes, 2));
  lanes = _mm_min_epu8(lanes, _mm_srli_si128(lanes, 1));
  return static_cast<uint8_t>(_mm_cvtsi128_si32(lanes));
}

inline uint8_t Largest(const ValueRange& range) {
  __m128i lanes = value_range_lanes::Load(range.highest);
  lanes = _mm_max_epu8(lanes, _mm_srli_si128(lanes, 8));
  lanes = _mm_max_epu8(lanes, _mm_srli_si128(lanes, 4));
  lanes = _mm_max_epu8(lanes, _mm_srli_si128(lanes, 2));
  lanes = _mm_max_epu8(lanes, _mm_srli_si128(lanes, 1));
  return static_cast<uint8_t>(_mm_cvtsi128_si32(lanes));
}

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

inline uint8_t Smallest(const ValueRange& range) {
  return *std::min_element(range.lowest, range.lowest + 16);
}

inline uint8_t Largest(const ValueRange& range) {
  return *std::max_element(range.highest, range.highest + 16);
}

inline void Widen(ValueRange* range, const uint8_t* values, size_t count, size_t /*readable*/) {
  WidenPlain(range, values, count);
}
#endif

}  // namespace vorlanepic
