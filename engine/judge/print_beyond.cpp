#include "engine/judge/print_beyond.h"

#include <algorithm>
#include <numeric>
#include <span>

namespace vorlane::judge {
namespace {

using evidence::kSides;
using evidence::Side;

// Rows of ink that are looked at.
constexpr int32_t kInkSamples = 500;
// Light is looked for this many pixels of the reduced picture away, at four places.
constexpr int32_t kLightAround = 6;
constexpr int32_t kFewestLight = 3;

// The rows of the reduced picture in which light around a row of pixels is looked for.
struct LightRows {
  const uint8_t* above;
  const uint8_t* below;
  int32_t width;
  uint8_t threshold;

  bool IsAround(int32_t x) const {
    return IsAt(std::max(x - kLightAround, 0), std::min(x + kLightAround, width - 1));
  }
  bool IsAt(int32_t left, int32_t right) const {
    const int32_t light = (above[left] >= threshold) + (above[right] >= threshold) +
                          (below[left] >= threshold) + (below[right] >= threshold);
    return light >= kFewestLight;
  }
};

// Marks the ink of a row that lies on light, a byte of 0 or 1 for each pixel. Away from the row's
// ends nothing is clamped, so that the compiler takes many pixels at a time.
void MarkInkOnLight(const uint8_t* ink, const LightRows& light, std::span<uint8_t> marks) {
  const auto width = static_cast<int32_t>(marks.size());
  const int32_t first = std::min(kLightAround, width);
  const int32_t last = std::max(first, width - kLightAround);
  const auto mark = [&](int32_t x, bool isOnLight) {
    marks[static_cast<size_t>(x)] = static_cast<uint8_t>(ink[x] & static_cast<uint8_t>(isOnLight));
  };
  for (int32_t x = 0; x < first; ++x) mark(x, light.IsAround(x));
  for (int32_t x = first; x < last; ++x) {
    mark(x, light.IsAt(x - kLightAround, x + kLightAround));
  }
  for (int32_t x = last; x < width; ++x) mark(x, light.IsAround(x));
}

// The side that a place lies beyond; kSides inside.
size_t SideBeyond(Point place, const CutRect& rect) {
  if (place.y < rect.top) return static_cast<size_t>(Side::kTop);
  if (place.x > rect.right) return static_cast<size_t>(Side::kRight);
  if (place.y > rect.bottom) return static_cast<size_t>(Side::kBottom);
  if (place.x < rect.left) return static_cast<size_t>(Side::kLeft);
  return kSides;
}

// Counts the marks of a row beyond each side. What a pixel lies beyond changes at most once for
// each side along a row: a block whose ends lie beyond the same one lies beyond it whole.
template <typename SideAt>
void CountMarks(std::span<const uint8_t> marks, SideAt sideAt,
                std::array<int64_t, kSides + 1>* counts) {
  constexpr size_t kBlock = 64;
  for (size_t first = 0; first < marks.size(); first += kBlock) {
    const auto block = marks.subspan(first, std::min(kBlock, marks.size() - first));
    const size_t side = sideAt(first);
    if (side == sideAt(first + block.size() - 1)) {
      (*counts)[side] += std::accumulate(block.begin(), block.end(), 0);
      continue;
    }
    for (size_t i = 0; i < block.size(); ++i) {
      if (block[i] != 0) ++(*counts)[sideAt(first + i)];
    }
  }
}

}  // namespace

std::array<double, kSides> SharesBeyond(const evidence::PageLevels& page,
                                        const evidence::InkPicture& ink, const PageAxes& axes,
                                        uint8_t threshold, const CutRect& rect) {
  const evidence::ReducedPicture& reduced = page.reduced();
  const int32_t step = std::max(1, std::max(ink.width, ink.height) / kInkSamples);
  const double scale = static_cast<double>(1 << reduced.shift);
  std::array<uint8_t, evidence::kMostReduced> room;
  const auto marks = std::span(room).first(static_cast<size_t>(ink.width));
  std::array<int64_t, kSides + 1> counts{};
  for (int32_t y = 0; y < ink.height; y += step) {
    const LightRows light{reduced.Row(std::max(y - kLightAround, 0)),
                          reduced.Row(std::min(y + kLightAround, reduced.height - 1)),
                          reduced.width, threshold};
    MarkInkOnLight(ink.Row(y), light, marks);
    const auto sideAt = [&](size_t x) {
      return SideBeyond(axes.ToPage({static_cast<double>(x) * scale, y * scale}), rect);
    };
    CountMarks(marks, sideAt, &counts);
  }
  const int64_t all = std::accumulate(counts.begin(), counts.end(), int64_t{0});
  std::array<double, kSides> shares{};
  for (size_t i = 0; i < kSides && all > 0; ++i) {
    shares[i] = static_cast<double>(counts[i]) / static_cast<double>(all);
  }
  return shares;
}

}  // namespace vorlane::judge
