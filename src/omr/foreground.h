// What counts as a marked pixel, one pixel or 64 at a time.
#pragma once

#include <cstdint>

#if defined(VORLANEPIC_X86)
#include <emmintrin.h>
#endif

namespace vorlanepic::omr {

// Pixels at or below a grey level.
struct DarkPixels {
  uint8_t threshold;

  bool Has(uint8_t value) const { return value <= threshold; }
#if defined(VORLANEPIC_X86)
  __m128i Has(__m128i values) const {
    const __m128i limit = _mm_set1_epi8(static_cast<char>(threshold));
    return _mm_cmpeq_epi8(_mm_min_epu8(values, limit), values);
  }
#endif
};

// Pixels that are not zero.
struct NonZeroPixels {
  bool Has(uint8_t value) const { return value != 0; }
#if defined(VORLANEPIC_X86)
  __m128i Has(__m128i values) const {
    const __m128i isZero = _mm_cmpeq_epi8(values, _mm_setzero_si128());
    return _mm_xor_si128(isZero, _mm_set1_epi8(-1));
  }
#endif
};

// Bit k tells whether pixels[k] is marked; 64 pixels are read.
template <typename Foreground>
uint64_t MarkedBits64(const Foreground& foreground, const uint8_t* pixels) {
  uint64_t bits = 0;
#if defined(VORLANEPIC_X86)
  for (int k = 0; k < 64; k += 16) {
    const __m128i values = _mm_loadu_si128(reinterpret_cast<const __m128i*>(pixels + k));
    const auto marked = static_cast<uint32_t>(_mm_movemask_epi8(foreground.Has(values)));
    bits |= static_cast<uint64_t>(marked) << k;
  }
#else
  for (int k = 0; k < 64; ++k) bits |= static_cast<uint64_t>(foreground.Has(pixels[k])) << k;
#endif
  return bits;
}

}  // namespace vorlanepic::omr
