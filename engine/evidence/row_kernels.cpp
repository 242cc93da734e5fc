#include "engine/evidence/row_kernels.h"

#include <algorithm>
#include <array>
#include <cstring>

#if defined(VORLANEPIC_X86)
#include <immintrin.h>
#endif

namespace vorlane::evidence {
namespace {

using vorlanepic::frame::InstructionSet;

// The compiler makes vector code of these loops as far as the instruction set goes that it may use:
// that of the function which they are inlined into.
#define INLINE_ROWS __attribute__((always_inline)) inline

template <size_t kBytes>
INLINE_ROWS void MeasureColours(const uint8_t* row, size_t pixels, uint8_t* __restrict largest,
                                uint8_t* __restrict brightness) {
  for (size_t x = 0; x < pixels; ++x) {
    const uint8_t a = row[kBytes * x];
    const uint8_t b = row[kBytes * x + 1];
    const uint8_t c = row[kBytes * x + 2];
    largest[x] = std::max(std::max(a, b), c);
    brightness[x] = static_cast<uint8_t>((a + 2 * b + c + 2) >> 2);
  }
}

// The eight levels of a byte of a 1-bit row.
constexpr auto kLevelsOfByte = [] {
  std::array<std::array<uint8_t, 8>, 256> levels{};
  for (size_t byte = 0; byte < 256; ++byte) {
    for (size_t bit = 0; bit < 8; ++bit) levels[byte][bit] = (byte << bit & 0x80) != 0 ? 255 : 0;
  }
  return levels;
}();

void ExpandBits(const uint8_t* row, size_t pixels, uint8_t* levels) {
  size_t x = 0;
  for (; x + 8 <= pixels; x += 8) std::memcpy(levels + x, kLevelsOfByte[row[x / 8]].data(), 8);
  if (x < pixels) std::memcpy(levels + x, kLevelsOfByte[row[x / 8]].data(), pixels - x);
}

template <size_t kShift>
INLINE_ROWS void MeansOfSquares(const uint16_t* sums, size_t count, uint8_t* __restrict means) {
  constexpr size_t kSums = size_t{1} << kShift >> 1;
  constexpr uint32_t kHalf = 1U << (2 * kShift - 1);
  for (size_t i = 0; i < count; ++i) {
    uint32_t sum = kHalf;
    for (size_t k = 0; k < kSums; ++k) sum += sums[kSums * i + k];
    means[i] = static_cast<uint8_t>(sum >> (2 * kShift));
  }
}

INLINE_ROWS void MeansOf(const uint16_t* sums, size_t count, int32_t shift, uint8_t* means) {
  switch (shift) {
    case 1:
      return MeansOfSquares<1>(sums, count, means);
    case 2:
      return MeansOfSquares<2>(sums, count, means);
    case 3:
      return MeansOfSquares<3>(sums, count, means);
    case 4:
      return MeansOfSquares<4>(sums, count, means);
    default:
      return MeansOfSquares<5>(sums, count, means);
  }
}

INLINE_ROWS void AddPairs(const uint8_t* levels, size_t pairs, uint16_t* __restrict sums) {
  for (size_t i = 0; i < pairs; ++i) {
    sums[i] = static_cast<uint16_t>(sums[i] + levels[2 * i] + levels[2 * i + 1]);
  }
}

INLINE_ROWS void AddCounts(const uint8_t* counts, size_t count, uint16_t* __restrict sums) {
  for (size_t i = 0; i < count; ++i) sums[i] = static_cast<uint16_t>(sums[i] + counts[i]);
}

INLINE_ROWS int64_t SumSquaredSteps(const uint16_t* sums, size_t count) {
  int64_t sum = 0;
  for (size_t i = 0; i + 1 < count; ++i) {
    const int32_t step = sums[i + 1] - sums[i];
    sum += step * step;
  }
  return sum;
}

constexpr RowKernels kPlain = {MeasureColours<3>, MeasureColours<4>, ExpandBits,     AddPairs,
                               MeansOf,           AddCounts,         SumSquaredSteps};

#if defined(VORLANEPIC_X86)
#define TARGET_AVX2 __attribute__((target("avx2")))

TARGET_AVX2 void MeasureColours24Avx2(const uint8_t* row, size_t pixels, uint8_t* largest,
                                      uint8_t* brightness) {
  MeasureColours<3>(row, pixels, largest, brightness);
}

TARGET_AVX2 void MeasureColours32Avx2(const uint8_t* row, size_t pixels, uint8_t* largest,
                                      uint8_t* brightness) {
  MeasureColours<4>(row, pixels, largest, brightness);
}

// 32 pixels at a time: each lane takes the byte that its bit stands in, and keeps the bit.
TARGET_AVX2 void ExpandBitsAvx2(const uint8_t* row, size_t pixels, uint8_t* levels) {
  const __m256i byteOfLane =
      _mm256_setr_epi64x(0, 0x0101010101010101, 0x0202020202020202, 0x0303030303030303);
  const __m256i bitOfLane = _mm256_set1_epi64x(0x0102040810204080);
  size_t x = 0;
  for (; x + 32 <= pixels; x += 32) {
    int32_t bits = 0;
    std::memcpy(&bits, row + x / 8, sizeof bits);
    const __m256i bytes = _mm256_shuffle_epi8(_mm256_set1_epi32(bits), byteOfLane);
    const __m256i isSet = _mm256_cmpeq_epi8(_mm256_and_si256(bytes, bitOfLane), bitOfLane);
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(levels + x), isSet);
  }
  ExpandBits(row + x / 8, pixels - x, levels + x);
}

TARGET_AVX2 void MeansOfAvx2(const uint16_t* sums, size_t count, int32_t shift, uint8_t* means) {
  MeansOf(sums, count, shift, means);
}

TARGET_AVX2 void AddPairsAvx2(const uint8_t* levels, size_t pairs, uint16_t* sums) {
  const __m256i ones = _mm256_set1_epi8(1);
  size_t i = 0;
  for (; i + 16 <= pairs; i += 16) {
    auto* at = reinterpret_cast<__m256i*>(sums + i);
    const __m256i both = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(levels + 2 * i));
    _mm256_storeu_si256(at,
                        _mm256_add_epi16(_mm256_loadu_si256(at), _mm256_maddubs_epi16(both, ones)));
  }
  AddPairs(levels + 2 * i, pairs - i, sums + i);
}

TARGET_AVX2 void AddCountsAvx2(const uint8_t* counts, size_t count, uint16_t* sums) {
  AddCounts(counts, count, sums);
}

TARGET_AVX2 int64_t SumSquaredStepsAvx2(const uint16_t* sums, size_t count) {
  return SumSquaredSteps(sums, count);
}

constexpr RowKernels kAvx2 = {MeasureColours24Avx2, MeasureColours32Avx2, ExpandBitsAvx2,
                              AddPairsAvx2,         MeansOfAvx2,          AddCountsAvx2,
                              SumSquaredStepsAvx2};
#endif

}  // namespace

const RowKernels& RowKernelsFor([[maybe_unused]] InstructionSet set) {
#if defined(VORLANEPIC_X86)
  if (set >= InstructionSet::kAvx2) return kAvx2;
#endif
  return kPlain;
}

const RowKernels& BestRowKernels() {
  static const RowKernels& best = RowKernelsFor(vorlanepic::frame::BestInstructionSet());
  return best;
}

}  // namespace vorlane::evidence
