// The constant weights of the interpolations, in tenths of a pixel.
#pragma once

#include <array>
#include <cstdint>

namespace vorlanepic::rotate {

// kBlendTable[w][v] is the share of a byte v at weight w tenths, cut to an integer. 1 is added to v
// below 255 so that two shares of one grey level add up to it; weight 10 is the byte itself. For
// any two bytes the shares at w and 10 - w add up to at most 255.
using BlendTable = std::array<std::array<uint8_t, 256>, 11>;

constexpr BlendTable MakeBlendTable() {
  BlendTable table{};
  for (uint32_t v = 0; v < 256; ++v) {
    const uint32_t raised = v < 255 ? v + 1 : v;
    for (uint32_t w = 0; w < 10; ++w) table[w][v] = static_cast<uint8_t>(raised * w / 10);
    table[10][v] = static_cast<uint8_t>(v);
  }
  return table;
}

inline constexpr BlendTable kBlendTable = MakeBlendTable();

// kCubicWeights[t] are the weights, scaled by 1024, of the four pixels around a sample that lies t
// tenths behind the second one: the cubic convolution kernel with a = -1.
using CubicWeights = std::array<std::array<int16_t, 4>, 11>;

// 1024 times the kernel at a distance of `tenths` (0..20), rounded to nearest.
constexpr int16_t CubicWeight(int32_t tenths) {
  const int32_t n = tenths;
  const int32_t thousandths =
      n <= 10 ? 1000 - 20 * n * n + n * n * n : 4000 - 800 * n + 50 * n * n - n * n * n;
  const int32_t half = thousandths < 0 ? -500 : 500;
  return static_cast<int16_t>((1024 * thousandths + half) / 1000);
}

constexpr CubicWeights MakeCubicWeights() {
  CubicWeights table{};
  for (int32_t t = 0; t <= 10; ++t) {
    table[static_cast<size_t>(t)] = {CubicWeight(10 + t), CubicWeight(t), CubicWeight(10 - t),
                                     CubicWeight(20 - t)};
  }
  return table;
}

inline constexpr CubicWeights kCubicWeights = MakeCubicWeights();

}  // namespace vorlanepic::rotate
