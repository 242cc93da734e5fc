// The seven kinds of pixel that a rotation computes, as the engine sees them.
#pragma once

#include <cstdint>

#include "rotate/rotate_job.h"

namespace vorlanepic::rotate {

enum class PixelKind : int32_t {
  kBitNearest,
  kGreyNearest,
  kGreyBilinear,
  kGreyBicubic,
  kColourNearest,
  kColourBilinear,
  kColourBicubic,
};
inline constexpr int32_t kPixelKinds = 7;

struct PixelRule {
  PixelKind kind;
  int32_t bitsPerPixel;
  int32_t reach;  // how far taps lie from the base pixel, in pixels, to either side
  // Hundredths of a pixel by which a negative offset is raised before it is cut downward, so that
  // the cut goes toward the centre: to whole pixels or, where values are blended, to tenths.
  int32_t negativeRaise;
  // Computes pixel x of the target row `row` from a point whose base pixel lies in the region.
  void (*sample)(const RotateJob& job, const SourcePoint& point, uint8_t* row, int32_t x);
};

// The rule for 1, 8 or 24 bits per pixel; 1-bit pixels have one rule for all interpolations.
const PixelRule& PixelRuleOf(int32_t bitsPerPixel, int32_t interpolation);

// Sets pixels first..last of a target row to the fill.
void FillPixels(const RotateJob& job, uint8_t* row, int32_t first, int32_t last);

}  // namespace vorlanepic::rotate
