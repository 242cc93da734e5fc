// The grey levels that may part a page from what lies around it.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "engine/evidence/page_levels.h"

namespace vorlane::evidence {

inline constexpr size_t kMostThresholds = 4;

// Levels at or above which a pixel counts as page, the most telling first.
struct Thresholds {
  std::array<uint8_t, kMostThresholds> levels{};
  size_t count = 0;

  std::span<const uint8_t> view() const { return std::span(levels).first(count); }
};

// Otsu's split of the levels, the level of the picture's own margin, and the two levels that part
// the levels best into three classes; those that lie nearer than 5 to an earlier one are left out.
// One threshold for a picture of two levels; none for a picture of one.
Thresholds ChooseThresholds(const PageLevels& page);

}  // namespace vorlane::evidence
