// The lines of the sides that bound a page.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "engine/evidence/half_plane.h"
#include "engine/evidence/page_levels.h"
#include "engine/evidence/paper_sides.h"
#include "engine/judge/finding.h"
#include "engine/judge/page_axes.h"

namespace vorlane::judge {

// Sides that lean alike lie no further apart than this, in degrees.
inline constexpr double kSameDegrees = 0.35;

constexpr size_t Index(evidence::Side side) { return static_cast<size_t>(side); }

// The place of a side's line at `along`, in the picture.
Point PointAt(const evidence::SideLine& line, size_t side, double along);

// Which line bounds the page on each side, where one is seen: the lines of a group of sides that
// lean alike, those of other thresholds that fit them, and what is found from inside, without bars
// and other sheets' sides.
class PageLines {
 public:
  // What is handed in outlives this.
  PageLines(const evidence::PageLevels& page, const evidence::PaperSides& sides,
            const PageAxes& axes)
      : page_(page), sides_(sides), axes_(axes) {}

  // Looks for the lines of the page that `group` is of. False when there is no memory.
  bool Find(const evidence::SideGroup& group);

  const std::optional<evidence::SideLine>& operator[](size_t side) const { return lines_[side]; }
  // Whether a bar or the picture's edge was taken for the side at first: the page runs off there.
  bool WasBar(size_t side) const { return isBar_[side]; }
  bool HasNeighbour(size_t side) const {
    return lines_[(side + 1) % evidence::kSides] || lines_[(side + 3) % evidence::kSides];
  }
  void Drop(size_t side) { lines_[side].reset(); }

  uint8_t ThresholdOf(const evidence::SideGroup& group) const {
    return sides_.thresholds.levels[group.threshold];
  }
  uint8_t Threshold() const { return ThresholdOf(*group_); }

  // What the lines bound; a side without one begins where its neighbours end.
  std::array<evidence::HalfPlane, evidence::kSides> Region() const;

  // Whether a place lies at the picture's own edge.
  bool IsAtFrame(Point place) const;

 private:
  void PickLines();
  void DropBars();
  bool IsContradicted(const evidence::SideLine& line, evidence::Side side) const;
  bool IsBar(evidence::Side side) const;
  void DropFarLines();
  bool IsGapBefore(const evidence::SideLine& line, evidence::Side side) const;
  bool EndsInside(const evidence::SideLine& line, size_t side,
                  const evidence::HalfPlane& plane) const;
  bool LookFromInside();
  double Surround() const;
  double OutnessOf(const evidence::SideLine& line, evidence::Side side) const;
  double StartOf(evidence::Side side) const;
  evidence::HalfPlane UprightSide(evidence::Side side, double outness) const;

  const evidence::PageLevels& page_;
  const evidence::PaperSides& sides_;
  const PageAxes& axes_;
  const evidence::SideGroup* group_ = nullptr;
  std::array<std::optional<evidence::SideLine>, evidence::kSides> lines_;
  std::array<bool, evidence::kSides> isBar_{};
};

}  // namespace vorlane::judge
