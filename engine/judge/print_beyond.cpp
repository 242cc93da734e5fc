#include "engine/judge/print_beyond.h"

#include <algorithm>

namespace vorlane::judge {
namespace {

using evidence::kSides;
using evidence::Side;

// Rows of ink that are looked at.
constexpr int32_t kInkSamples = 500;
// Light is looked for this many pixels of the reduced picture away, at four places.
constexpr int32_t kLightAround = 6;
constexpr int32_t kFewestLight = 3;

bool IsOnLight(const evidence::ReducedPicture& reduced, int32_t x, int32_t y, uint8_t threshold) {
  int32_t light = 0;
  for (const int32_t dy : {-kLightAround, kLightAround}) {
    for (const int32_t dx : {-kLightAround, kLightAround}) {
      const int32_t column = std::clamp(x + dx, 0, reduced.width - 1);
      const int32_t row = std::clamp(y + dy, 0, reduced.height - 1);
      light += reduced.Row(row)[column] >= threshold;
    }
  }
  return light >= kFewestLight;
}

// The side that a place lies beyond; kSides inside.
size_t SideBeyond(Point place, const CutRect& rect) {
  if (place.y < rect.top) return static_cast<size_t>(Side::kTop);
  if (place.x > rect.right) return static_cast<size_t>(Side::kRight);
  if (place.y > rect.bottom) return static_cast<size_t>(Side::kBottom);
  if (place.x < rect.left) return static_cast<size_t>(Side::kLeft);
  return kSides;
}

}  // namespace

std::array<double, kSides> SharesBeyond(const evidence::PageLevels& page,
                                        const evidence::InkPicture& ink, const PageAxes& axes,
                                        uint8_t threshold, const CutRect& rect) {
  const int32_t step = std::max(1, std::max(ink.width, ink.height) / kInkSamples);
  const double scale = static_cast<double>(1 << page.reduced().shift);
  std::array<int64_t, kSides + 1> counts{};
  int64_t all = 0;
  for (int32_t y = 0; y < ink.height; y += step) {
    const uint8_t* row = ink.Row(y);
    for (int32_t x = 0; x < ink.width; ++x) {
      if (row[x] == 0 || !IsOnLight(page.reduced(), x, y, threshold)) continue;
      ++all;
      ++counts[SideBeyond(axes.ToPage({x * scale, y * scale}), rect)];
    }
  }
  std::array<double, kSides> shares{};
  for (size_t i = 0; i < kSides && all > 0; ++i) {
    shares[i] = static_cast<double>(counts[i]) / static_cast<double>(all);
  }
  return shares;
}

}  // namespace vorlane::judge
