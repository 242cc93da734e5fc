#include "engine/judge/page_lines.h"

#include <algorithm>
#include <cmath>

#include "analysis/border_records.h"
#include "engine/evidence/inner_trace.h"
#include "engine/evidence/light_beyond.h"
#include "engine/evidence/side_contrast.h"
#include "vorlanepic/vorlanepic.h"

namespace vorlane::judge {
namespace {

using evidence::HalfPlane;
using evidence::kAllSides;
using evidence::kSides;
using evidence::Side;
using evidence::SideGroup;
using evidence::SideLine;

// The same side at another threshold may lie this much further out, as a share of the picture's
// longer side: the page's edge is soft.
constexpr double kSoftShare = 0.006;
// Where no line is seen, the page is taken to reach this far from the opposite side, as a share of
// the longer side.
constexpr double kLeastPage = 0.1;
// A line is no side where so much of the trace beside it runs at the picture's edge.
constexpr double kContradicted = 0.3;
// A side is looked for from inside from this far within the ends of its neighbours, as a share of
// the longer side.
constexpr double kStartInside = 0.015;
// What a side that was found from inside has to be: straight, and lighter than the gap.
constexpr double kInnerStraight = 0.6;
constexpr double kInnerContrast = 8.0;
// A line beyond the ends of both its neighbours by this share is another sheet's.
constexpr double kTooFar = 0.025;
constexpr double kGapBefore = 4.0;  // pixels
constexpr double kAtFrame = 8.0;
// What lies outside a side is lighter than outside the others by this much where it is no surround
// but a bar on the sheet; bars that the frame cuts lie this near to it.
constexpr double kBarLevels = 15.0;
constexpr double kBarShare = 0.04;

}  // namespace

Point PointAt(const SideLine& line, size_t side, double along) {
  return evidence::RunsAcross(kAllSides[side]) ? Point{along, line.At(along)}
                                               : Point{line.At(along), along};
}

bool PageLines::Find(const SideGroup& group) {
  group_ = &group;
  lines_ = {};
  PickLines();
  DropBars();
  DropFarLines();
  return LookFromInside();
}

// The group's own lines, at the threshold where they lie furthest out within a soft edge; for
// its missing sides the innermost line that leans alike: light beyond it moves it out again.
void PageLines::PickLines() {
  for (const Side side : kAllSides) {
    std::optional<SideLine>& picked = lines_[Index(side)];
    if (group_->Has(side)) picked = sides_.SidesOf(*group_)[Index(side)];
    const bool isOwn = picked.has_value();
    const double furthest = isOwn ? OutnessOf(*picked, side) + kSoftShare * page_.size() : 0.0;
    for (const SideGroup& other : sides_.view()) {
      if (!other.Has(side) || other.isRim) continue;
      if (std::abs(other.degrees - group_->degrees) > kSameDegrees) continue;
      const SideLine& line = sides_.SidesOf(other)[Index(side)];
      const double outness = OutnessOf(line, side);
      const bool isBetter =
          !picked || (isOwn ? outness > OutnessOf(*picked, side) && outness <= furthest
                            : outness < OutnessOf(*picked, side));
      if (isBetter) picked = line;
    }
  }
}

// Takes away the lines that are a bar's: the page runs off the picture there.
void PageLines::DropBars() {
  for (const Side side : kAllSides) {
    const auto& line = lines_[Index(side)];
    isBar_[Index(side)] = line && (IsBar(side) || IsContradicted(*line, side));
  }
  for (const Side side : kAllSides) {
    if (isBar_[Index(side)]) lines_[Index(side)].reset();
  }
}

// Whether the trace beside a line runs at the picture's edge, at every threshold that sees it.
bool PageLines::IsContradicted(const SideLine& line, Side side) const {
  if (line.contradicted < kContradicted) return false;
  const double outness = OutnessOf(line, side);
  const auto sets = std::span(sides_.sets).first(sides_.thresholds.count);
  return std::ranges::none_of(sets, [&](const evidence::SideSet& set) {
    const SideLine& other = set[Index(side)];
    return other.isSeen && other.contradicted < kContradicted &&
           std::abs(other.degrees - line.degrees) <= kSameDegrees &&
           std::abs(OutnessOf(other, side) - outness) <= kSoftShare * page_.size();
  });
}

// Whether the dark outside a line is a bar on the sheet that the frame cuts.
bool PageLines::IsBar(Side side) const {
  const SideLine& line = *lines_[Index(side)];
  if (line.outside <= Surround() + kBarLevels) return false;
  const double across = line.At((line.from + line.to) / 2);
  const double extent = evidence::RunsAcross(side) ? page_.height() : page_.width();
  return std::min(across, extent - 1.0 - across) <= kBarShare * page_.size();
}

// Takes away the lines that both neighbours end before, with a gap behind: those of another
// sheet.
void PageLines::DropFarLines() {
  const auto lines = lines_;
  for (const Side side : kAllSides) {
    const auto& line = lines[Index(side)];
    const auto& before = lines[(Index(side) + 3) % kSides];
    const auto& behind = lines[(Index(side) + 1) % kSides];
    if (!line || !before || !behind) continue;
    const HalfPlane plane = evidence::InsideOf(*line, side, kTooFar * page_.size());
    if (EndsInside(*before, (Index(side) + 3) % kSides, plane) &&
        EndsInside(*behind, (Index(side) + 1) % kSides, plane)) {
      lines_[Index(side)].reset();
      if (!IsGapBefore(*line, side)) lines_[Index(side)] = line;
    }
  }
}

// Whether it is dark somewhere between where the other lines end and this one.
bool PageLines::IsGapBefore(const SideLine& line, Side side) const {
  const std::array<HalfPlane, kSides> region = Region();
  const Point middle = PointAt(line, Index(side), (line.from + line.to) / 2.0);
  const double distance = -region[Index(side)].Inside(middle.x, middle.y);
  return evidence::FirstGapBeyond(page_, Threshold(), region, side) < distance - kGapBefore;
}

// Whether both ends of a line lie inside a half plane. One at the frame is not seen to end.
bool PageLines::EndsInside(const SideLine& line, size_t side, const HalfPlane& plane) const {
  for (const double along : {line.from, line.to}) {
    const Point end = PointAt(line, side, along);
    if (plane.Inside(end.x, end.y) <= 0.0 || IsAtFrame(end)) return false;
  }
  return true;
}

// Looks for each side that is missing from where its neighbours end. False when there is no
// memory.
bool PageLines::LookFromInside() {
  for (const Side side : kAllSides) {
    if (lines_[Index(side)] || isBar_[Index(side)] || !HasNeighbour(Index(side))) continue;
    std::array<HalfPlane, kSides> region = Region();
    region[Index(side)].c += kStartInside * page_.size();
    vorlanepic::analysis::SideTrace trace;
    SideLine line;
    if (!evidence::TraceFromInside(page_, Threshold(), region, side, &trace)) return false;
    if (evidence::FitSide(trace, side, page_.width(), page_.height(), &line) != STATUS_OK) {
      return false;
    }
    if (!line.isSeen || line.straight < kInnerStraight) continue;
    if (std::abs(line.degrees - group_->degrees) > kSameDegrees) continue;
    evidence::MeasureContrast(page_, side, &line);
    if (line.contrast < kInnerContrast || line.outside > Surround() + kBarLevels) continue;
    lines_[Index(side)] = line;
  }
  return true;
}

// The level around the sheet: the darkest outside the group's sides.
double PageLines::Surround() const {
  double level = 255.0;
  for (const Side side : kAllSides) {
    if (group_->Has(side)) level = std::min(level, sides_.SidesOf(*group_)[Index(side)].outside);
  }
  return level;
}

// How far out a line lies from the middle of the picture.
double PageLines::OutnessOf(const SideLine& line, Side side) const {
  return evidence::InsideOf(line, side, 0.0).Inside(axes_.middle.x, axes_.middle.y);
}

// Where the page's light starts from on a side without a line: the ends of the lines beside it,
// or a little off the line opposite. Outwards positive, in page coordinates.
double PageLines::StartOf(Side side) const {
  const bool across = evidence::RunsAcross(side);
  const double sign = side == Side::kTop || side == Side::kLeft ? -1.0 : 1.0;
  double start = -INFINITY;
  for (const Side other : kAllSides) {
    const auto& line = lines_[Index(other)];
    if (!line) continue;
    if (evidence::RunsAcross(other) == across) {
      start = std::max(start, kLeastPage * page_.size() - OutnessOf(*line, other));
      continue;
    }
    for (const double along : {line->from, line->to}) {
      const Point place = axes_.ToPage(PointAt(*line, Index(other), along));
      start = std::max(start, sign * (across ? place.y : place.x));
    }
  }
  return start;
}

// The half plane of the picture inside `outness` of a side of the upright page.
HalfPlane PageLines::UprightSide(Side side, double outness) const {
  const double sign = side == Side::kTop || side == Side::kLeft ? 1.0 : -1.0;
  HalfPlane plane = evidence::RunsAcross(side)
                        ? HalfPlane{-sign * axes_.sine, sign * axes_.cosine, 0.0}
                        : HalfPlane{sign * axes_.cosine, sign * axes_.sine, 0.0};
  plane.c = plane.a * axes_.middle.x + plane.b * axes_.middle.y - outness;
  return plane;
}

std::array<HalfPlane, kSides> PageLines::Region() const {
  std::array<HalfPlane, kSides> region{};
  for (const Side side : kAllSides) {
    const auto& line = lines_[Index(side)];
    region[Index(side)] =
        line ? evidence::InsideOf(*line, side, 0.0) : UprightSide(side, StartOf(side));
  }
  return region;
}

bool PageLines::IsAtFrame(Point place) const {
  return std::min(place.x, place.y) <= kAtFrame || place.x >= page_.width() - 1.0 - kAtFrame ||
         place.y >= page_.height() - 1.0 - kAtFrame;
}

}  // namespace vorlane::judge
