// Constants that the vector kernels share: divisions and weights in 16-bit arithmetic.
#pragma once

#include <cstddef>
#include <cstdint>

#include "rotate/weights.h"

namespace vorlanepic::rotate {

// x / 100 is the high half of x * kHundredth, shifted, for every x below 43698.
inline constexpr int16_t kHundredth = 5243;
inline constexpr int kHundredthShift = 3;
// x / 10 is the high half of x * kTenth for every x below 100.
inline constexpr int16_t kTenth = 6554;

// The share of a byte v at weight w tenths is the high half of 2 * v * w * kBlendTenth, where v
// below 255 is raised by 1 unless w is 10.
inline constexpr int16_t kBlendTenth = 3277;

inline constexpr int kCubicShift = 10;

// Two of the four cubic weights for each phase 0..10 as neighbouring words; 16 entries fill
// vectors.
struct CubicPairTable {
  alignas(64) int32_t pairs[16];
};

constexpr CubicPairTable MakeCubicPairs(size_t low, size_t high) {
  CubicPairTable table{};
  for (size_t t = 0; t <= 10; ++t) {
    const auto lowWord = static_cast<uint16_t>(kCubicWeights[t][low]);
    const auto highWord = static_cast<uint16_t>(kCubicWeights[t][high]);
    table.pairs[t] = static_cast<int32_t>(lowWord | uint32_t{highWord} << 16);
  }
  return table;
}

inline constexpr CubicPairTable kCubicPairs02 = MakeCubicPairs(0, 2);
inline constexpr CubicPairTable kCubicPairs13 = MakeCubicPairs(1, 3);

}  // namespace vorlanepic::rotate
