// What the AVX2 kernels of grey and of coloured pixels have in common.
#pragma once

#include <cstdint>
#include <immintrin.h>

#include "rotate/kernels.h"
#include "rotate/simd_constants.h"

#define TARGET_AVX2 __attribute__((target("avx2")))

namespace vorlanepic::rotate::avx2 {

// `constant` in all lanes, unknown to the compiler, which would spell multiplications by it out as
// shifts and sums that take longer.
TARGET_AVX2 inline __m256i Multiplier(int16_t constant) {
  __m256i all = _mm256_set1_epi16(constant);
  asm("" : "+x"(all));
  return all;
}

// x / 100 for x below 43698.
TARGET_AVX2 inline __m256i Hundredths(__m256i x) {
  return _mm256_srli_epi16(_mm256_mulhi_epu16(x, _mm256_set1_epi16(kHundredth)), kHundredthShift);
}

TARGET_AVX2 inline __m128i Hundredths(__m128i x) {
  return _mm_srli_epi16(_mm_mulhi_epu16(x, _mm_set1_epi16(kHundredth)), kHundredthShift);
}

// The tenths digit of x, of which `whole` are the hundreds.
TARGET_AVX2 inline __m256i Tenths(__m256i x, __m256i whole) {
  const __m256i rest = _mm256_sub_epi16(x, _mm256_mullo_epi16(whole, Multiplier(100)));
  return _mm256_mulhi_epu16(rest, _mm256_set1_epi16(kTenth));
}

TARGET_AVX2 inline __m128i Tenths(__m128i x, __m128i whole) {
  const __m128i rest = _mm_sub_epi16(x, _mm_mullo_epi16(whole, _mm_set1_epi16(100)));
  return _mm_mulhi_epu16(rest, _mm_set1_epi16(kTenth));
}

TARGET_AVX2 inline __m256i Steps(const uint16_t* steps, uint16_t start) {
  const __m256i step = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(steps));
  return _mm256_add_epi16(step, _mm256_set1_epi16(static_cast<int16_t>(start)));
}

TARGET_AVX2 inline __m128i StepsOfEight(const uint16_t* steps, uint16_t start) {
  const __m128i step = _mm_loadu_si128(reinterpret_cast<const __m128i*>(steps));
  return _mm_add_epi16(step, _mm_set1_epi16(static_cast<int16_t>(start)));
}

TARGET_AVX2 inline __m256i LoadTwo(const uint8_t* low, const uint8_t* high) {
  return _mm256_inserti128_si256(
      _mm256_castsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(low))),
      _mm_loadu_si128(reinterpret_cast<const __m128i*>(high)), 1);
}

// Pairs of bytes (a, b), one pair a word, blended at `weight` = kBlendTenth times the tenths of b:
// the shares of kBlendTable in closed form.
TARGET_AVX2 inline __m256i Mix(__m256i pairs, __m256i weight) {
  const __m256i isBlended = _mm256_cmpgt_epi16(weight, _mm256_setzero_si256());
  const __m256i raised =
      _mm256_adds_epu8(pairs, _mm256_and_si256(isBlended, _mm256_set1_epi16(0x0101)));
  const __m256i twiceA = _mm256_maddubs_epi16(raised, _mm256_set1_epi16(0x0002));
  const __m256i twiceB = _mm256_maddubs_epi16(raised, _mm256_set1_epi16(0x0200));
  const __m256i weightA =
      _mm256_sub_epi16(_mm256_set1_epi16(static_cast<int16_t>(10 * kBlendTenth)), weight);
  return _mm256_add_epi16(_mm256_mulhi_epu16(twiceA, weightA), _mm256_mulhi_epu16(twiceB, weight));
}

TARGET_AVX2 inline __m256i MixSquares(__m256i top, __m256i bottom, __m256i weightX,
                                      __m256i weightY) {
  const __m256i a = Mix(top, weightX);
  const __m256i b = Mix(bottom, weightX);
  return Mix(_mm256_or_si256(a, _mm256_slli_epi16(b, 8)), weightY);
}

// The sum of four rows' or taps' products, scaled back: weights (0, 2) and (1, 3) in pairs.
TARGET_AVX2 inline __m256i WeighFour(__m256i values02, __m256i values13, __m256i weights02,
                                     __m256i weights13) {
  return _mm256_srai_epi32(_mm256_add_epi32(_mm256_madd_epi16(values02, weights02),
                                            _mm256_madd_epi16(values13, weights13)),
                           kCubicShift);
}

// Two values of 32 bits, which fit 16, as one pair.
TARGET_AVX2 inline __m256i PairUp(__m256i low, __m256i high) {
  return _mm256_blend_epi16(low, _mm256_slli_epi32(high, 16), 0xAA);
}

TARGET_AVX2 inline __m256i WeighRows(const __m256i (&rows)[4], __m256i weights02,
                                     __m256i weights13) {
  return WeighFour(PairUp(rows[0], rows[2]), PairUp(rows[1], rows[3]), weights02, weights13);
}

// Whole blocks of a run, and a last one that ends with it and may repeat pixels.
template <int kBlock, void (*kPixels)(const PixelRun&, int32_t)>
TARGET_AVX2 inline void RunBlocks(const PixelRun& run) {
  int32_t i = 0;
  for (; i + kBlock <= run.count; i += kBlock) kPixels(run, i);
  if (i < run.count) kPixels(run, run.count - kBlock);
}

// Works on a copy, which no store to the output can change. Most pages lie so straight that
// neighbours differ by one row at most: with that known, no loop over rows is left.
template <int kBlock, void (*kPixels)(const PixelRun&, int32_t)>
TARGET_AVX2 void InBlocks(const PixelRun& run) {
  PixelRun own = run;
  if (run.rows == 1) {
    own.rows = 1;
    RunBlocks<kBlock, kPixels>(own);
  } else {
    RunBlocks<kBlock, kPixels>(own);
  }
}

// The kernels of 24-bit pixels.
void ColourNearest(const PixelRun& run);
void ColourBilinear(const PixelRun& run);
void ColourBicubic(const PixelRun& run);

}  // namespace vorlanepic::rotate::avx2
