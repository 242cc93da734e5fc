// Tests up to 64 neighbouring pixels of a row at once.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#if defined(VORLANEPIC_X86)
#include <emmintrin.h>
#endif

#include "analysis/border_records.h"
#include "analysis/pixel_access.h"

namespace vorlanepic::analysis {

static_assert(std::endian::native == std::endian::little);

// Pixels in a mask.
inline constexpr int32_t kMaskPixels = 64;

// DocumentMask<Pixel>(levels)(row, x, count) has a bit for each of the pixels x .. x + count - 1,
// at most 64, set where the pixel belongs to the document; the other bits are 0. PixelOf() is the
// place, 0..63, of the pixel whose bit has a number; it is its own inverse.
template <typename Pixel>
class DocumentMask;

// The bits as they are stored. x is a multiple of 8; PixelOf() turns the order within bytes around.
template <>
class DocumentMask<Bit1> {
 public:
  explicit DocumentMask(GreyBand) {}

  uint64_t operator()(const uint8_t* row, int32_t x, int32_t count) const {
    uint64_t mask = 0;
    if (count == kMaskPixels) {
      std::memcpy(&mask, row + (x >> 3), sizeof mask);
      return mask;
    }
    std::memcpy(&mask, row + (x >> 3), static_cast<size_t>(count + 7) / 8);
    const uint64_t padding = 0xFFU >> (count & 7);
    return (count & 7) == 0 ? mask : mask & ~(padding << (count & ~7));
  }

  static int32_t PixelOf(int32_t bit) { return bit ^ 7; }
};

#if defined(VORLANEPIC_X86)

inline __m128i LoadBytes(const uint8_t* bytes) {
  return _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes));
}

// Tests for grey levels in a band.
class BandTest {
 public:
  explicit BandTest(GreyBand levels)
      : low_(_mm_set1_epi8(static_cast<char>(levels.low))),
        high_(_mm_set1_epi8(static_cast<char>(levels.high))) {}

  // Bit i tells whether byte i lies in the band.
  uint32_t operator()(__m128i grey) const {
    // The saturated differences are 0 inside the band only.
    const __m128i outside = _mm_or_si128(_mm_subs_epu8(low_, grey), _mm_subs_epu8(grey, high_));
    return static_cast<uint32_t>(_mm_movemask_epi8(_mm_cmpeq_epi8(outside, _mm_setzero_si128())));
  }

  // Whether all of `count` bytes, a multiple of 64, lie below the band: the quick way past the
  // background.
  bool AllBelow(const uint8_t* bytes, int32_t count) const {
    __m128i largest = _mm_setzero_si128();
    for (int32_t i = 0; i < count; i += 64) {
      const __m128i half0 = _mm_max_epu8(LoadBytes(bytes + i), LoadBytes(bytes + i + 16));
      const __m128i half1 = _mm_max_epu8(LoadBytes(bytes + i + 32), LoadBytes(bytes + i + 48));
      largest = _mm_max_epu8(largest, _mm_max_epu8(half0, half1));
    }
    return _mm_movemask_epi8(_mm_cmpeq_epi8(_mm_max_epu8(largest, low_), largest)) == 0;
  }

 private:
  __m128i low_;
  __m128i high_;
};

// Test16<Pixel>()(pixels, band) tests the 16 pixels that begin at `pixels`.
template <typename Pixel>
struct Test16;

template <>
struct Test16<Grey8> {
  static constexpr int32_t kPixelBytes = 1;
  uint64_t operator()(const uint8_t* pixels, const BandTest& band) const {
    return band(LoadBytes(pixels));
  }
};

template <>
struct Test16<Colour24> {
  static constexpr int32_t kPixelBytes = 3;
  uint64_t operator()(const uint8_t* pixels, const BandTest& band) const {
    // At every third byte stands the largest of the three from there on. The last vector takes what
    // it would need of the bytes behind the pixels from itself.
    const __m128i last = LoadBytes(pixels + 32);
    const uint64_t bits0 = band(LargestOfThree(pixels));
    const uint64_t bits1 = band(LargestOfThree(pixels + 16));
    const uint64_t bits2 =
        band(_mm_max_epu8(last, _mm_max_epu8(_mm_srli_si128(last, 1), _mm_srli_si128(last, 2))));
    return EveryThird(bits0 | bits1 << 16 | bits2 << 32);
  }

 private:
  static __m128i LargestOfThree(const uint8_t* bytes) {
    return _mm_max_epu8(LoadBytes(bytes), _mm_max_epu8(LoadBytes(bytes + 1), LoadBytes(bytes + 2)));
  }

  // Moves bits 0, 3, 6 ... 45 together.
  static uint64_t EveryThird(uint64_t bits) {
    bits &= 0x249249249249;
    if (bits == 0) return 0;
    bits = (bits | bits >> 2) & 0x0C30C30C30C3;
    bits = (bits | bits >> 4) & 0xF00F00F00F;
    bits = (bits | bits >> 8) & 0xFF0000FF;
    return (bits | bits >> 16) & 0xFFFF;
  }
};

template <typename Pixel>
class DocumentMask {
 public:
  explicit DocumentMask(GreyBand levels) : levels_(levels), band_(levels) {}

  uint64_t operator()(const uint8_t* row, int32_t x, int32_t count) const {
    constexpr int32_t kPixelBytes = Test16<Pixel>::kPixelBytes;
    const uint8_t* pixels = row + ptrdiff_t{kPixelBytes} * x;
    if (count == kMaskPixels && band_.AllBelow(pixels, kMaskPixels * kPixelBytes)) return 0;

    uint64_t mask = 0;
    int32_t i = 0;
    for (; i + 16 <= count; i += 16) {
      mask |= Test16<Pixel>()(pixels + ptrdiff_t{kPixelBytes} * i, band_) << i;
    }
    for (; i < count; ++i) {
      mask |= uint64_t{Pixel::IsDocument(row, x + i, levels_)} << i;
    }
    return mask;
  }

  static int32_t PixelOf(int32_t bit) { return bit; }

 private:
  GreyBand levels_;
  BandTest band_;
};

#else

template <typename Pixel>
class DocumentMask {
 public:
  explicit DocumentMask(GreyBand levels) : levels_(levels) {}

  uint64_t operator()(const uint8_t* row, int32_t x, int32_t count) const {
    uint64_t mask = 0;
    for (int32_t i = 0; i < count; ++i) {
      mask |= uint64_t{Pixel::IsDocument(row, x + i, levels_)} << i;
    }
    return mask;
  }

  static int32_t PixelOf(int32_t bit) { return bit; }

 private:
  GreyBand levels_;
};

#endif

}  // namespace vorlanepic::analysis
