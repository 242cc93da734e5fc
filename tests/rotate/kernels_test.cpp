// The kernels' arithmetic, at every value: closed forms must give what the tables of weights hold.
#include "rotate/kernels.h"

#include <vector>

#include "rotate/rotate_fixture.h"
#include "rotate/weights.h"
#include "support/guarded_memory.h"

namespace vorlanepic::testing {

using namespace rotate;
namespace {

using KernelsTest = InstructionSetTest;

constexpr int32_t kRunPixels = 256;

uint8_t Mix(uint8_t a, uint8_t b, int32_t phase) {
  const auto t = static_cast<size_t>(phase);
  return static_cast<uint8_t>(kBlendTable[10 - t][a] + kBlendTable[t][b]);
}

// Runs the bilinear kernel of `kind` along `upper`, which lies above `lower`, with one phase along
// each axis. Both hold a multiple of kRunPixels and one more.
void ExpectShares(PixelKind kind, const std::vector<uint8_t>& upper,
                  const std::vector<uint8_t>& lower, int32_t phaseX, int32_t phaseY) {
  const size_t pixelBytes = kind == PixelKind::kColourBilinear ? 3 : 1;
  const size_t pixels = upper.size();
  const size_t line = pixels * pixelBytes + kReadAhead;
  GuardedBytes source(5 * line);
  for (size_t i = 0; i < pixels * pixelBytes; ++i) {
    source[i] = upper[i / pixelBytes];
    for (size_t row = 1; row < 5; ++row) source[row * line + i] = lower[i / pixelBytes];
  }
  StepTables level;
  ASSERT_TRUE(level.Build(0.0, kMostNeighbours));
  std::vector<uint16_t> stepX(kRunPixels + kMostNeighbours);
  for (size_t i = 0; i < stepX.size(); ++i) stepX[i] = static_cast<uint16_t>(i * 100);
  const std::vector<uint16_t> stepY(stepX.size());
  GuardedBytes out(kRunPixels * pixelBytes);

  PixelRun run{};
  run.sourceLine = static_cast<ptrdiff_t>(line);
  run.stepX = stepX.data();
  run.stepY = stepY.data();
  run.startX = static_cast<uint16_t>(phaseX * 10 + 9);  // the last hundredth before the next tenth
  run.startY = static_cast<uint16_t>(phaseY * 10 + 9);
  run.rows = 1;
  run.out = out.data();
  for (size_t first = 0; first + 1 < pixels; first += kRunPixels) {
    run.origin = &source[first * pixelBytes];
    run.count = kRunPixels;
    RotateKernelFor(kind, level).run(run);
    for (size_t i = 0; i < static_cast<size_t>(run.count) * pixelBytes; ++i) {
      const size_t at = first + i / pixelBytes;
      const uint8_t expected =
          Mix(Mix(upper[at], upper[at + 1], phaseX), Mix(lower[at], lower[at + 1], phaseX), phaseY);
      ASSERT_EQ(out[i], expected) << upper[at] + 0 << " " << upper[at + 1] + 0 << " over "
                                  << lower[at] + 0 << " " << lower[at + 1] + 0 << " at " << phaseX
                                  << ", " << phaseY << " tenths";
    }
  }
}

TEST_P(KernelsTest, BlendEveryPairOfBytesAtEveryTenth) {
  std::vector<uint8_t> pairs;  // both bytes one behind the other
  std::vector<uint8_t> first;
  std::vector<uint8_t> second;
  for (int32_t i = 0; i < 65536; ++i) {
    first.push_back(static_cast<uint8_t>(i >> 8));
    second.push_back(static_cast<uint8_t>(i));
    pairs.insert(pairs.end(), {first.back(), second.back()});
  }
  for (std::vector<uint8_t>* row : {&pairs, &first, &second}) row->push_back(0);
  for (const PixelKind kind : {PixelKind::kGreyBilinear, PixelKind::kColourBilinear}) {
    for (int32_t phase = 0; phase < 10; ++phase) {
      ASSERT_NO_FATAL_FAILURE(ExpectShares(kind, pairs, pairs, phase, 0));
      ASSERT_NO_FATAL_FAILURE(ExpectShares(kind, first, second, 0, phase));
    }
  }
}

INSTANTIATE_TEST_SUITE_P(InstructionSets, KernelsTest,
                         ::testing::ValuesIn(frame::kInstructionSets));

}  // namespace
}  // namespace vorlanepic::testing
