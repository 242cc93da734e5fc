// What is printed, written or drawn on the page: everything darker than what lies around it.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "engine/evidence/half_plane.h"
#include "engine/evidence/page_levels.h"

namespace vorlane::evidence {

// Ink of the reduced picture: a byte for each pixel, 1 where there is ink, 0 elsewhere and in the
// padding of each row to a multiple of 8.
struct InkPicture {
  int32_t width = 0;
  int32_t height = 0;
  size_t stride = 0;
  vorlanepic::frame::ScratchArray<uint8_t> pixels;

  const uint8_t* Row(int32_t y) const { return pixels.data() + static_cast<size_t>(y) * stride; }
  uint8_t* Row(int32_t y) { return pixels.data() + static_cast<size_t>(y) * stride; }
};

// Marks the ink inside all of `region`, half planes of the reduced picture; an empty region is the
// whole picture but its outermost pixels, without what hangs together with those. False when there
// is no memory.
bool FindInk(const ReducedPicture& picture, std::span<const HalfPlane> region, InkPicture* ink);

// The same by its definition, pixel by pixel, without a region: ink is at least kInkDepth darker
// than the mean of the 16 x 16 pixels around it, those beyond the picture being its outermost ones.
inline constexpr int32_t kInkDepth = 14;
inline constexpr int32_t kInkWindow = 16;

}  // namespace vorlane::evidence
