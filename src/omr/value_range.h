// Smallest and largest of many pixel values.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#if defined(VORLANEPIC_X86)
#include <emmintrin.h>
#endif

namespace vorlanepic::omr {

// The range of no values has lowest > highest.
struct ValueRange {
  uint8_t lowest = 255;
  uint8_t highest = 0;
};

inline void Widen(ValueRange* range, const ValueRange& other) {
  range->lowest = std::min(range->lowest, other.lowest);
  range->highest = std::max(range->highest, other.highest);
}

// The range of those of values[0] .. values[count - 1] that are marked.
template <typename Foreground>
ValueRange RangeOfMarkedPlain(const Foreground& foreground, const uint8_t* values, size_t count) {
  ValueRange range;
  for (size_t k = 0; k < count; ++k) {
    if (foreground.Has(values[k])) Widen(&range, {values[k], values[k]});
  }
  return range;
}

// The range of values[0] .. values[count - 1].
inline ValueRange RangeOfPlain(const uint8_t* values, size_t count) {
  ValueRange range;
  for (size_t k = 0; k < count; ++k) Widen(&range, {values[k], values[k]});
  return range;
}

#if defined(VORLANEPIC_X86)
// The range of values in 16 lanes.
class ValueLanes {
 public:
  static constexpr size_t kCount = 16;

  static __m128i Load(const uint8_t* values) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(values));
  }

  // Takes in the values whose lanes of `mask` are all ones, not zero.
  void Take(__m128i values, __m128i mask) {
    // The complement of the smallest value is the largest complement.
    inverse_ = _mm_max_epu8(inverse_, _mm_andnot_si128(values, mask));
    highest_ = _mm_max_epu8(highest_, _mm_and_si128(values, mask));
  }

  ValueRange Range() const {
    // Complements in the lower half, values in the upper one.
    __m128i both = _mm_max_epu8(_mm_unpacklo_epi64(inverse_, highest_),
                                _mm_unpackhi_epi64(inverse_, highest_));
    both = _mm_max_epu8(both, _mm_srli_epi64(both, 32));
    both = _mm_max_epu8(both, _mm_srli_epi64(both, 16));
    both = _mm_max_epu8(both, _mm_srli_epi64(both, 8));
    return {static_cast<uint8_t>(~_mm_cvtsi128_si32(both)),
            static_cast<uint8_t>(_mm_extract_epi16(both, 4))};
  }

 private:
  __m128i inverse_ = _mm_setzero_si128();
  __m128i highest_ = _mm_setzero_si128();
};

// As RangeOfMarkedPlain.
template <typename Foreground>
ValueRange RangeOfMarked(const Foreground& foreground, const uint8_t* values, size_t count) {
  if (count < ValueLanes::kCount) return RangeOfMarkedPlain(foreground, values, count);
  ValueLanes lanes;
  // The last lanes may overlap those before them, which changes no range.
  for (size_t k = 0; k < count; k += ValueLanes::kCount) {
    const __m128i taken = ValueLanes::Load(values + std::min(k, count - ValueLanes::kCount));
    lanes.Take(taken, foreground.Has(taken));
  }
  return lanes.Range();
}

// As RangeOfPlain; `readable` bytes may be read from `values` on, at least `count`.
inline ValueRange RangeOf(const uint8_t* values, size_t count, size_t readable) {
  // 16 bytes from kMask + 16 - n: the first n lanes are kept.
  static constexpr uint8_t kMask[32] = {255, 255, 255, 255, 255, 255, 255, 255,
                                        255, 255, 255, 255, 255, 255, 255, 255};
  if (readable < ValueLanes::kCount) return RangeOfPlain(values, count);
  const size_t first = std::min(count, ValueLanes::kCount);
  ValueLanes lanes;
  lanes.Take(ValueLanes::Load(values), ValueLanes::Load(kMask + ValueLanes::kCount - first));
  for (size_t k = first; k < count; k += ValueLanes::kCount) {
    // The last lanes may overlap those before them, which changes no range.
    lanes.Take(ValueLanes::Load(values + std::min(k, count - ValueLanes::kCount)),
               _mm_set1_epi8(-1));
  }
  return lanes.Range();
}
#else
template <typename Foreground>
ValueRange RangeOfMarked(const Foreground& foreground, const uint8_t* values, size_t count) {
  return RangeOfMarkedPlain(foreground, values, count);
}

inline ValueRange RangeOf(const uint8_t* values, size_t count, size_t /*readable*/) {
  return RangeOfPlain(values, count);
}
#endif

}  // namespace vorlanepic::omr
