// The rotation as it is done: tiles of the output are sorted by where they lie in the source, and
// what lies wholly in the region goes to the kernels in runs that need no test.
#pragma once

#include <cstdint>

#include "frame/scratch.h"
#include "rotate/kernels.h"
#include "rotate/pixel_rule.h"
#include "rotate/region_index.h"
#include "rotate/rotate_job.h"

namespace vorlanepic::rotate {

// One rotation, made ready once and then computed by several threads at a time.
class TiledRotation {
 public:
  // Whether the job suits: its source rows lie one behind the other, and its steps and sides leave
  // so much room in an int32 that no sum wraps. Other jobs are left to RotateRowsPlain.
  static bool Suits(const RotateJob& job);

  // `job` suits, has its step tables and outlives this object.
  explicit TiledRotation(const RotateJob& job);

  // Makes the tables. False when there is no memory.
  [[nodiscard]] bool Build();

  // Computes rows first..last of the job's target, row padding included.
  void RotateRows(int32_t first, int32_t last) const;

 private:
  // Output columns left..right of rows top..bottom, all inclusive.
  struct OutputRect {
    int32_t left;
    int32_t right;
    int32_t top;
    int32_t bottom;
  };
  // Output columns first..last of a row.
  struct Columns {
    int32_t first = 0;
    int32_t last = -1;

    int32_t count() const { return last - first + 1; }
  };
  class RowWriter;

  int32_t OffsetX(int32_t x, int32_t y) const;
  int32_t OffsetY(int32_t x, int32_t y) const;
  // The extremes of both offsets in a rectangle of the output.
  frame::PixelRect OffsetsOf(const OutputRect& rect) const;
  frame::PixelRect BasePixelsOf(const OutputRect& rect) const;
  // Whether all taps of these base pixels lie in the region, and where a kernel may read them. May
  // be cautious for more than one source row.
  bool HoldsTapsOf(const frame::PixelRect& basePixels) const;
  bool IsInside(int32_t x, int32_t y) const;
  bool IsInner(int32_t x, int32_t y) const;

  // Whether neither offset changes its sign.
  bool IsOneSided(const OutputRect& rect) const;

  void RotateTile(const OutputRect& tile) const;
  // Pixels of any kind, one by one.
  void VisitColumns(int32_t y, int32_t first, int32_t last) const;
  void VisitPixel(int32_t y, int32_t x) const;
  Columns RotateMixedRow(int32_t y, int32_t left, int32_t right, const Columns& likely) const;

  // Pixels first..last of row y, all with their taps in the region.
  void RotateInnerRun(int32_t y, int32_t first, int32_t last) const;
  void RotateOneSidedRun(int32_t y, int32_t first, int32_t last) const;
  void RunKernelOn(int32_t y, int32_t first, int32_t last) const;
  void SamplePixels(int32_t y, int32_t first, int32_t last) const;

  const RotateJob& job_;
  const PixelRule& rule_;
  const RotateKernel& kernel_;
  const int32_t rows_;   // by which the rows of the kernel's neighbours differ
  uintptr_t ahead_;      // bytes from a source pixel to the one some output rows below it
  int32_t lastSafeRow_;  // of the source, for a tap of a kernel
  RegionIndex index_;
  frame::ScratchArray<uint16_t> stepX_;  // low 16 bits of each output column's part in the offsets
  frame::ScratchArray<uint16_t> stepY_;
};

}  // namespace vorlanepic::rotate
