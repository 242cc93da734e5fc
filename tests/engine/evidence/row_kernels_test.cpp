#include "engine/evidence/row_kernels.h"

#include <algorithm>
#include <memory>
#include <random>
#include <vector>

#include <gtest/gtest.h>

namespace vorlane::evidence {
namespace {

using vorlanepic::frame::InstructionSet;

// Levels of chance among the extreme ones, in a buffer of the exact size.
std::vector<uint8_t> Levels(size_t count) {
  std::mt19937 random(static_cast<uint32_t>(count));
  std::vector<uint8_t> levels(count);
  for (uint8_t& level : levels) {
    const auto draw = static_cast<uint32_t>(random());
    level = static_cast<uint8_t>((draw & 0x300) == 0 ? 255 : (draw & 0x300) == 0x100 ? 0 : draw);
  }
  levels.shrink_to_fit();
  return levels;
}

class RowKernelsTest : public testing::TestWithParam<InstructionSet> {
 protected:
  void SetUp() override {
    if (!vorlanepic::frame::HasInstructionSet(GetParam())) GTEST_SKIP();
  }
  const RowKernels& kernels() const { return RowKernelsFor(GetParam()); }
};

TEST_P(RowKernelsTest, MeasuresTheLargestColourAndTheBrightness) {
  for (size_t pixels = 0; pixels < 140; ++pixels) {
    for (const size_t bytes : {3U, 4U}) {
      const std::vector<uint8_t> row = Levels(bytes * pixels);
      std::vector<uint8_t> largest(pixels);
      std::vector<uint8_t> brightness(pixels);
      const auto measure = bytes == 3 ? kernels().measureColours24 : kernels().measureColours32;
      measure(row.data(), pixels, largest.data(), brightness.data());
      for (size_t x = 0; x < pixels; ++x) {
        const uint8_t* colour = row.data() + bytes * x;
        ASSERT_EQ(largest[x], *std::max_element(colour, colour + 3)) << x << " of " << pixels;
        const int32_t sum = colour[0] + 2 * colour[1] + colour[2];
        ASSERT_EQ(brightness[x], (sum + 2) / 4) << x << " of " << pixels;
      }
    }
  }
}

TEST_P(RowKernelsTest, AddsPairsAndCountsAndSquaresSteps) {
  for (size_t count = 0; count < 140; ++count) {
    const std::vector<uint8_t> levels = Levels(2 * count);
    std::vector<uint16_t> pairs(count, 16000);
    std::vector<uint16_t> counts(count, 300);
    kernels().addPairs(levels.data(), count, pairs.data());
    kernels().addCounts(levels.data(), count, counts.data());
    double squares = 0.0;
    for (size_t i = 0; i < count; ++i) {
      ASSERT_EQ(pairs[i], 16000 + levels[2 * i] + levels[2 * i + 1]) << i << " of " << count;
      ASSERT_EQ(counts[i], 300 + levels[i]) << i << " of " << count;
      counts[i] = static_cast<uint16_t>(128 * levels[i]);
      if (i > 0) squares += 16384.0 * (levels[i] - levels[i - 1]) * (levels[i] - levels[i - 1]);
    }
    ASSERT_EQ(static_cast<double>(kernels().sumSquaredSteps(counts.data(), count)), squares);
  }
}

TEST_P(RowKernelsTest, ExpandsTheHighestBitFirst) {
  for (size_t pixels = 0; pixels < 140; ++pixels) {
    const std::vector<uint8_t> row = Levels((pixels + 7) / 8);
    std::vector<uint8_t> levels(pixels);
    kernels().expandBits(row.data(), pixels, levels.data());
    for (size_t x = 0; x < pixels; ++x) {
      ASSERT_EQ(levels[x], (row[x / 8] << x % 8 & 0x80) != 0 ? 255 : 0) << x << " of " << pixels;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Sets, RowKernelsTest,
                         testing::Values(InstructionSet::kScalar, InstructionSet::kAvx2));

}  // namespace
}  // namespace vorlane::evidence
