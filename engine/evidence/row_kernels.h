// What the engine does to rows of bytes by the million: the same loops, made for every processor
// and once more for those with AVX2.
#pragma once

#include <cstddef>
#include <cstdint>

#include "frame/processor.h"

namespace vorlane::evidence {

// Rows that are written overlap nothing that is read.
struct RowKernels {
  // The largest of a pixel's three colours, and their brightness with the second one, green,
  // counted twice, which needs no knowledge of which of the others is red: (a + 2b + c + 2) / 4.
  using MeasureColours = void (*)(const uint8_t* row, size_t pixels, uint8_t* largest,
                                  uint8_t* brightness);
  MeasureColours measureColours24;
  MeasureColours measureColours32;  // fourth bytes are not looked at

  // The levels of a 1-bit row, the highest bit of a byte first: 255 for a set bit, 0 for others.
  void (*expandBits)(const uint8_t* row, size_t pixels, uint8_t* levels);

  // sums[i] += levels[2i] + levels[2i + 1]
  void (*addPairs)(const uint8_t* levels, size_t pairs, uint16_t* sums);

  // means[i] = the mean, rounded, of the 2^shift x 2^shift levels that the 2^(shift - 1) sums from
  // i * 2^(shift - 1) on hold; shift 1..5.
  void (*meansOf)(const uint16_t* sums, size_t count, int32_t shift, uint8_t* means);

  // sums[i] += counts[i]
  void (*addCounts)(const uint8_t* counts, size_t count, uint16_t* sums);

  // The sum of the squares of sums[i + 1] - sums[i]; sums are below 32768.
  int64_t (*sumSquaredSteps)(const uint16_t* sums, size_t count);
};

// Those for `set`, which the processor has; all give the same results.
const RowKernels& RowKernelsFor(vorlanepic::frame::InstructionSet set);

// Those for the processor at hand.
const RowKernels& BestRowKernels();

}  // namespace vorlane::evidence
