// What the AVX-512 kernels have in common. A vector of the output's bytes is a "part": it holds
// whole pixels or not, and all its taps lie in one window of the source, a few rows of 64 bytes.
// Each of these rows is loaded once for the part and permuted to its lanes, and a lane keeps the
// taps of its own row. Grey and colour differ only in which pixel and channel a lane stands for.
#pragma once

#include <cstdint>

// g++ 12 takes the header's own undefined vectors for a fault.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wuninitialized"
#if !defined(__clang__)
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif
#include <immintrin.h>
#pragma GCC diagnostic pop

#include "rotate/kernels.h"
#include "rotate/simd_constants.h"

#define TARGET_AVX512 __attribute__((target("avx512f,avx512bw,avx512vl,avx512vbmi")))
// Of lambdas, which take no `inline`, too.
#define INLINE_AVX512 __attribute__((target("avx512f,avx512bw,avx512vl,avx512vbmi"), always_inline))

namespace vorlanepic::rotate::avx512 {

constexpr int32_t kWords = 32;  // words of a vector
constexpr int32_t kBytes = 64;  // bytes of a vector

struct alignas(64) Words {
  uint16_t at[kWords];
};

struct alignas(64) Bytes {
  uint8_t at[kBytes];
};

INLINE_AVX512 inline __m512i Load(const Words& words) { return _mm512_load_si512(words.at); }
INLINE_AVX512 inline __m512i Load(const Bytes& bytes) { return _mm512_load_si512(bytes.at); }

INLINE_AVX512 inline __m512i AllWords(int32_t word) {
  return _mm512_set1_epi16(static_cast<int16_t>(word));
}

// `constant` in all words, unknown to the compiler, which would spell multiplications by it out as
// shifts and sums that take longer.
INLINE_AVX512 inline __m512i Multiplier(int32_t constant) {
  __m512i all = AllWords(constant);
  asm("" : "+v"(all));
  return all;
}

// x / 100 for x below 43698.
INLINE_AVX512 inline __m512i Hundredths(__m512i x) {
  return _mm512_srli_epi16(_mm512_mulhi_epu16(x, AllWords(kHundredth)), kHundredthShift);
}

// The tenths digit of x, of which `whole` are the hundreds.
INLINE_AVX512 inline __m512i Tenths(__m512i x, __m512i whole) {
  const __m512i rest = _mm512_sub_epi16(x, _mm512_mullo_epi16(whole, Multiplier(100)));
  return _mm512_mulhi_epu16(rest, AllWords(kTenth));
}

INLINE_AVX512 inline __m512i Steps(const uint16_t* steps, uint16_t start) {
  return _mm512_add_epi16(_mm512_loadu_si512(steps), AllWords(start));
}

// Source columns, in bytes, and rows of kVectors * 32 neighbours, from the run's origin.
template <int kVectors>
struct Places {
  Words columns[kVectors];
  Words rows[kVectors];

  int32_t ColumnOf(int32_t pixel) const { return columns[pixel / kWords].at[pixel % kWords]; }
  int32_t RowOf(int32_t pixel) const { return rows[pixel / kWords].at[pixel % kWords]; }
};

// The least column and row of a part's pixels, and the source byte there.
struct Window {
  int32_t left;
  int32_t top;
  const uint8_t* first;
};

// Of pixels first..last, whose coordinates are monotone.
template <int kVectors>
INLINE_AVX512 inline Window WindowOf(const PixelRun& run, const Places<kVectors>& places,
                                     int32_t first, int32_t last) {
  const int32_t left = places.ColumnOf(run.isFallingX ? last : first);
  const int32_t top = places.RowOf(run.isFallingY ? last : first);
  const uint8_t* corner = run.origin + top * run.sourceLine + left;
  FetchAhead(run, corner);
  return {left, top, corner};
}

// The lowest `count` bits, count from 1 to 64.
inline uint64_t LowBits(int32_t count) { return ~uint64_t{0} >> (64 - count); }

// What is left of a run behind its whole blocks.
template <typename Block>
TARGET_AVX512 __attribute__((noinline)) void RotateRest(const PixelRun& run, int32_t i) {
  Block::Rotate(run, i, run.count - i);
}

template <typename Block>
INLINE_AVX512 inline void RotateBlocks(const PixelRun& run) {
  int32_t i = 0;
  for (; i + Block::kPixels <= run.count; i += Block::kPixels) {
    Block::Rotate(run, i, Block::kPixels);
  }
  if (i < run.count) RotateRest<Block>(run, i);
}

// Works on a copy, which no store to the output can change. Most pages lie so straight that a few
// rows are all: with their number known, no loop over rows is left.
template <typename Block>
TARGET_AVX512 void InBlocks(const PixelRun& run) {
  PixelRun own = run;
  switch (run.rows) {
    case 1:
      own.rows = 1;
      return RotateBlocks<Block>(own);
    case 2:
      own.rows = 2;
      return RotateBlocks<Block>(own);
    case 3:
      own.rows = 3;
      return RotateBlocks<Block>(own);
    default:
      return RotateBlocks<Block>(own);
  }
}

// The kernels of nearest pixels.
void BitNearest(const PixelRun& run);
void GreyNearest(const PixelRun& run);
void ColourNearest(const PixelRun& run);

}  // namespace vorlanepic::rotate::avx512
