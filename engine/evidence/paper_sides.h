// The sides of the paper at every threshold, and the groups of them that lean alike.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "engine/evidence/page_levels.h"
#include "engine/evidence/side_line.h"
#include "engine/evidence/thresholds.h"

namespace vorlane::evidence {

using SideSet = std::array<SideLine, kSides>;

// Sides of one threshold that lean alike.
struct SideGroup {
  size_t threshold = 0;    // place in Thresholds
  uint32_t sides = 0;      // bits 1 << Side
  int32_t count = 0;       // of sides
  double degrees = 0.0;    // mean, weighted by the sides' lengths
  double spread = 0.0;     // largest minus smallest angle
  double deviation = 0.0;  // of its sides' angles, weighted like the mean
  double straight = 0.0;   // the least of its sides
  double weight = 0.0;     // summed length of what is filled, in pixels
  bool isRim = false;      // it may be the picture's own frame or the rim of the glass

  bool Has(Side side) const { return (sides >> static_cast<uint32_t>(side) & 1) != 0; }
  bool HasBothDirections() const {
    return (Has(Side::kTop) || Has(Side::kBottom)) && (Has(Side::kLeft) || Has(Side::kRight));
  }
  bool HasOpposites() const {
    return (Has(Side::kTop) && Has(Side::kBottom)) || (Has(Side::kLeft) && Has(Side::kRight));
  }
};

inline constexpr size_t kMostGroups = kMostThresholds * kSides;

struct PaperSides {
  Thresholds thresholds;
  std::array<SideSet, kMostThresholds> sets{};
  std::array<SideGroup, kMostGroups> groups{};  // the first groupCount, the best first
  size_t groupCount = 0;
  // Four sides that close around a page but do not lean alike: a page in perspective, or not
  // square.
  SideGroup quad;
  bool hasQuad = false;
  // What the borders vote for at the first threshold.
  double voteDegrees = 0.0;
  bool hasVote = false;

  std::span<const SideGroup> view() const { return std::span(groups).first(groupCount); }
  const SideSet& SidesOf(const SideGroup& group) const { return sets[group.threshold]; }
};

// Returns STATUS_OK, whatever is seen, or OUT_OF_MEMORY.
int32_t FindPaperSides(const PageLevels& page, PaperSides* sides);

}  // namespace vorlane::evidence
