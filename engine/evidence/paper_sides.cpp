#include "engine/evidence/paper_sides.h"

#include <algorithm>
#include <bit>
#include <cmath>

#include "engine/evidence/border_traces.h"
#include "engine/evidence/side_contrast.h"
#include "vorlanepic/vorlanepic.h"

namespace vorlane::evidence {
namespace {

// Sides that lean alike, in degrees.
constexpr double kAlike = 0.4;
// A rim lies along the frame, in degrees, and near it, as a share of the picture's longer side.
constexpr double kRimDegrees = 0.06;
constexpr double kSingleRimDegrees = 0.02;
constexpr double kRimShare = 0.04;
// A streak or the frame itself leans less, in degrees, and ends nearer to the frame, in pixels.
constexpr double kStreakDegrees = 0.03;
constexpr double kStreakEnd = 10.0;
constexpr double kStreakStraight = 0.9;
// The corners of a page close within this share of the picture's longer side, and its sides lie no
// further apart than this, in degrees.
constexpr double kCornerShare = 0.03;
constexpr int32_t kFewestCorners = 3;
constexpr double kQuadSpread = 6.0;
// Across a side that is worth the name, levels differ by more than noise and folds make them.
constexpr double kLeastContrast = 8.0;

bool IsStreak(const SideLine& line, int32_t extent) {
  return std::abs(line.degrees) <= kStreakDegrees && line.from <= kStreakEnd &&
         line.to >= extent - kStreakEnd && line.straight >= kStreakStraight;
}

int32_t FindSidesAt(const PageLevels& page, size_t threshold, PaperSides* sides) {
  vorlanepic::analysis::BorderTraces traces;
  int32_t status = TraceBorders(page, sides->thresholds.levels[threshold], &traces);
  if (status == BORDER_NOT_FOUND) return STATUS_OK;
  if (status != STATUS_OK) return status;
  const std::array<const vorlanepic::analysis::SideTrace*, kSides> order{
      &traces.top, &traces.right, &traces.bottom, &traces.left};
  for (size_t i = 0; i < kSides; ++i) {
    SideLine& line = sides->sets[threshold][i];
    status = FitSide(*order[i], kAllSides[i], page.width(), page.height(), &line);
    if (status != STATUS_OK) return status;
    if (!line.isSeen) continue;
    MeasureContrast(page, kAllSides[i], &line);
    line.isSeen = line.contrast >= kLeastContrast;
    line.isFrameLike = IsStreak(line, RunsAcross(kAllSides[i]) ? page.width() : page.height());
  }
  if (threshold > 0) return STATUS_OK;
  status = LetBordersVote(traces, &sides->voteDegrees);
  sides->hasVote = status == STATUS_OK;
  return status == OUT_OF_MEMORY ? status : STATUS_OK;
}

// How far the middle of a side lies from the picture's own edge.
double FrameDistance(const SideLine& line, Side side, const PageLevels& page) {
  const double across = line.At((line.from + line.to) / 2);
  switch (side) {
    case Side::kTop:
    case Side::kLeft:
      return across;
    case Side::kRight:
      return page.width() - 1 - across;
    default:
      return page.height() - 1 - across;
  }
}

SideGroup GroupOf(const PageLevels& page, const SideSet& set, uint32_t members, size_t threshold) {
  SideGroup group;
  group.threshold = threshold;
  group.sides = members;
  group.count = std::popcount(members);
  group.straight = 1.0;
  group.isRim = true;
  const double rimDegrees = group.count == 1 ? kSingleRimDegrees : kRimDegrees;
  double low = INFINITY;
  double high = -INFINITY;
  double sum = 0.0;
  double squares = 0.0;
  for (size_t i = 0; i < kSides; ++i) {
    const SideLine& line = set[i];
    if (!group.Has(kAllSides[i])) continue;
    group.weight += line.weight();
    sum += line.degrees * line.weight();
    squares += line.degrees * line.degrees * line.weight();
    low = std::min(low, line.degrees);
    high = std::max(high, line.degrees);
    group.straight = std::min(group.straight, line.straight);
    const bool isNearFrame = std::abs(line.degrees) <= rimDegrees &&
                             FrameDistance(line, kAllSides[i], page) <= kRimShare * page.size();
    group.isRim = group.isRim && (line.isFrameLike || isNearFrame);
  }
  group.degrees = sum / group.weight;
  group.deviation =
      std::sqrt(std::max(0.0, squares / group.weight - group.degrees * group.degrees));
  group.spread = high - low;
  return group;
}

// Spreads in steps of a tenth of a degree: within one, length tells more.
int32_t SpreadClass(const SideGroup& group) { return static_cast<int32_t>(group.spread * 10.0); }

// Sides are told first by how many there are, then by whether both directions are among them; a
// larger spread outweighs length.
bool IsBetter(const SideGroup& a, const SideGroup& b) {
  if (a.isRim != b.isRim) return !a.isRim;
  if (a.count != b.count) return a.count > b.count;
  if (a.HasBothDirections() != b.HasBothDirections()) return a.HasBothDirections();
  const int32_t spreadA = SpreadClass(a);
  const int32_t spreadB = SpreadClass(b);
  if (spreadA != spreadB) return spreadA < spreadB;
  if (a.weight != b.weight) return a.weight > b.weight;
  return a.threshold != b.threshold ? a.threshold < b.threshold : a.sides < b.sides;
}

void AddGroups(const PageLevels& page, size_t threshold, PaperSides* sides) {
  const SideSet& set = sides->sets[threshold];
  std::array<uint32_t, kSides> added{};
  size_t addedCount = 0;
  for (size_t seed = 0; seed < kSides; ++seed) {
    if (!set[seed].isSeen) continue;
    uint32_t members = 0;
    for (size_t i = 0; i < kSides; ++i) {
      const bool isAlike = std::abs(set[i].degrees - set[seed].degrees) <= kAlike &&
                           set[i].isFrameLike == set[seed].isFrameLike;
      if (set[i].isSeen && isAlike) members |= uint32_t{1} << i;
    }
    const auto known = std::span(added).first(addedCount);
    if (std::ranges::find(known, members) != known.end()) continue;
    added[addedCount++] = members;
    sides->groups[sides->groupCount++] = GroupOf(page, set, members, threshold);
  }
}

// Whether the lines of two neighbouring sides meet where both end.
bool Closes(const SideLine& across, double acrossEnd, const SideLine& down, double downEnd,
            double within) {
  // x = down.offset + down.slope * y with y = across.offset + across.slope * x.
  const double x = (down.offset + down.slope * across.offset) / (1.0 - down.slope * across.slope);
  return std::abs(x - acrossEnd) <= within && std::abs(across.At(x) - downEnd) <= within;
}

int32_t CornersClosed(const SideSet& set, double within) {
  const auto& [top, right, bottom, left] = set;
  return Closes(top, top.from, left, left.from, within) +
         Closes(top, top.to, right, right.from, within) +
         Closes(bottom, bottom.to, right, right.to, within) +
         Closes(bottom, bottom.from, left, left.to, within);
}

void LookForQuad(const PageLevels& page, size_t threshold, PaperSides* sides) {
  const SideSet& set = sides->sets[threshold];
  const auto isPageSide = [](const SideLine& line) { return line.isSeen && !line.isFrameLike; };
  if (!std::ranges::all_of(set, isPageSide)) return;
  if (CornersClosed(set, kCornerShare * page.size()) < kFewestCorners) return;
  const SideGroup quad = GroupOf(page, set, (1U << kSides) - 1, threshold);
  if (quad.isRim || quad.spread > kQuadSpread) return;
  if (sides->hasQuad && sides->quad.weight >= quad.weight) return;
  sides->quad = quad;
  sides->hasQuad = true;
}

}  // namespace

int32_t FindPaperSides(const PageLevels& page, PaperSides* sides) {
  *sides = {};
  sides->thresholds = ChooseThresholds(page);
  for (size_t i = 0; i < sides->thresholds.count; ++i) {
    const int32_t status = FindSidesAt(page, i, sides);
    if (status != STATUS_OK) return status;
    AddGroups(page, i, sides);
    LookForQuad(page, i, sides);
  }
  std::ranges::sort(std::span(sides->groups).first(sides->groupCount), IsBetter);
  return STATUS_OK;
}

}  // namespace vorlane::evidence
