#include "engine/evidence/row_kernels.h"

#include <algorithm>

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

constexpr RowKernels kPlain = {MeasureColours<3>, MeasureColours<4>, AddPairs, AddCounts,
                               SumSquaredSteps};

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

TARGET_AVX2 void AddPairsAvx2(const uint8_t* levels, size_t pairs, uint16_t* sums) {
  AddPairs(levels, pairs, sums);
}

TARGET_AVX2 void AddCountsAvx2(const uint8_t* counts, size_t count, uint16_t* sums) {
  AddCounts(counts, count, sums);
}

TARGET_AVX2 int64_t SumSquaredStepsAvx2(const uint16_t* sums, size_t count) {
  return SumSquaredSteps(sums, count);
}

constexpr RowKernels kAvx2 = {MeasureColours24Avx2, MeasureColours32Avx2, AddPairsAvx2,
                              AddCountsAvx2, SumSquaredStepsAvx2};
#endif

}  // namespace

const RowKernels& RowKernelsFor(InstructionSet set) {
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
