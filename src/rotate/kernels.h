// The inner loops of a rotation, one table of them for each instruction set.
#pragma once

#include <cstddef>
#include <cstdint>

#include "frame/prefetch.h"
#include "frame/processor.h"
#include "rotate/pixel_rule.h"

namespace vorlanepic::rotate {

// Runs of a kernel stay within strips of this many output columns, so that steps fit 16 bits.
inline constexpr int32_t kStripColumns = 384;
// Kernels take no run shorter than this.
inline constexpr int32_t kShortestRun = 16;
// Kernels may read this many bytes from a tap on, also in each of the `rows` rows below it, and as
// many steps behind a run.
inline constexpr int32_t kReadAhead = 128;
inline constexpr int32_t kMostNeighbours = 64;

// A run of neighbouring output pixels whose taps all lie in the region. Pixel i of the run lies
//   x = (stepX[i] + startX) mod 2^16, y = (stepY[i] + startY) mod 2^16
// hundredths of a source pixel right of and below `origin`; x / 100 and y / 100 are its first
// pixel, and the tenths of the rest its phases. x and y are monotone in i, change by at most 100 a
// step and stay below 100 * (kStripColumns + 1).
struct PixelRun {
  const uint8_t* origin;  // the byte that holds the least column and row that the run comes to
  int32_t originBit;      // 1 bit: which pixel of that byte, 0..7; else 0
  ptrdiff_t sourceLine;   // bytes from one source row to the next
  const uint16_t* stepX;
  const uint16_t* stepY;
  uint16_t startX;
  uint16_t startY;
  bool isFallingX;  // whether x falls along the run
  bool isFallingY;  // whether y does
  int32_t rows;     // by which the rows of the kernel's neighbours differ at most; at least 1
  uintptr_t ahead;  // bytes from a source pixel to the one that a later row needs, mod 2^n
  uint8_t* out;     // first byte of the run; at 1 bit it begins with the run
  int32_t count;    // pixels, at least kShortestRun; a multiple of 8 at 1 bit
};

// Later rows of the output find their part of the source in the cache; slanted walks are too much
// for the machine's own prefetching. What lies ahead of `pixel` may lie outside the source.
VORLANEPIC_PREFETCHES inline void FetchAhead(const PixelRun& run, const uint8_t* pixel) {
  frame::Prefetch(pixel, run.ahead);
}

// A kernel, which computes a run. It takes the source's rows for several neighbours together and is
// not made for turns that spread these over more rows than it can do with.
struct RotateKernel {
  void (*run)(const PixelRun& run);
  int32_t neighbours = 1;        // pixels taken together, 1 to kMostNeighbours
  int32_t mostRows = INT32_MAX;  // by which their rows may differ
};

// Kernels by PixelKind.
struct KernelTable {
  RotateKernel kernels[kPixelKinds];
};

// The kernel for a rotation with these steps: of the best instruction set, unless another was
// selected, or of one before it when that one's is not made for such a turn.
const RotateKernel& RotateKernelFor(PixelKind kind, const StepTables& steps);

// By how many source rows neighbours differ at most when `count` of them are taken together; at
// least 1.
int32_t RowsOfNeighbours(int32_t count, const StepTables& steps);

// Makes rotations use the kernels of `set`, which the machine has, from the next call on. For
// tests: calls that are under way must have ended.
void SelectRotateKernels(frame::InstructionSet set);

extern const KernelTable kScalarKernels;
extern const KernelTable kSse2Kernels;
extern const KernelTable kAvx2Kernels;
extern const KernelTable kAvx512Kernels;

}  // namespace vorlanepic::rotate
