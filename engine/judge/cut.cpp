#include "engine/judge/cut.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

#include "engine/evidence/light_beyond.h"
#include "engine/judge/page_axes.h"

namespace vorlane::judge {
namespace {

using evidence::HalfPlane;
using evidence::InkPicture;
using evidence::kAllSides;
using evidence::kSides;
using evidence::PageLevels;
using evidence::PaperSides;
using evidence::Side;
using evidence::SideGroup;
using evidence::SideLine;

// Sides lean as the page does within this, in degrees; where print alone gave the angle, those of
// the paper may lean this much otherwise.
constexpr double kSameDegrees = 0.35;
constexpr double kPaperDegrees = 3.0;
// The same side at another threshold may lie this much further out, as a share of the picture's
// longer side: the page's edge is soft.
constexpr double kSoftShare = 0.006;
// Where no line is seen, the page is taken to reach this far from the opposite side, and the cut
// to end this much beyond its light; both shares of the longer side.
constexpr double kLeastPage = 0.1;
constexpr double kLightSlack = 0.004;
// A side beyond whose end a neighbouring one goes on by this share is none of the sheet's.
constexpr double kOvershoot = 0.012;
constexpr double kOnFrame = 0.5;
constexpr int32_t kInkSamples = 500;

// A convex polygon: a rectangle clipped four times.
struct Polygon {
  std::array<Point, 12> points{};
  size_t count = 0;
};

// Sutherland and Hodgman's clipping by one line.
Polygon Clip(const Polygon& polygon, const HalfPlane& plane) {
  Polygon clipped;
  for (size_t i = 0; i < polygon.count; ++i) {
    const Point a = polygon.points[i];
    const Point b = polygon.points[(i + 1) % polygon.count];
    const double insideA = plane.Inside(a.x, a.y);
    const double insideB = plane.Inside(b.x, b.y);
    if (insideA >= 0.0) clipped.points[clipped.count++] = a;
    if ((insideA >= 0.0) != (insideB >= 0.0)) {
      const double share = insideA / (insideA - insideB);
      clipped.points[clipped.count++] = {a.x + share * (b.x - a.x), a.y + share * (b.y - a.y)};
    }
  }
  return clipped;
}

Polygon PictureOf(int32_t width, int32_t height) {
  Polygon polygon;
  const double right = width - 0.5;
  const double bottom = height - 0.5;
  polygon.points = {Point{-0.5, -0.5}, {right, -0.5}, {right, bottom}, {-0.5, bottom}};
  polygon.count = 4;
  return polygon;
}

class Cutter {
 public:
  Cutter(const PageLevels& page, const PaperSides& sides, const Decision& decision)
      : page_(page),
        sides_(sides),
        decision_(decision),
        axes_(PageAxes::Of(decision.degrees, page.width(), page.height())) {}

  bool Find(const InkPicture& ink, double outwards, Cut* cut) {
    *cut = {};
    group_ = decision_.group != nullptr ? decision_.group : PaperOfPrint();
    if (group_ == nullptr) {
      cut->rect = WholePicture(decision_.degrees, page_.width(), page_.height());
      return true;
    }
    PickLines();
    const std::array<HalfPlane, kSides> region = Region();
    const uint8_t threshold = sides_.thresholds.levels[group_->threshold];
    if (!evidence::MeasureLightBeyond(page_, threshold, region, &beyond_)) return false;
    for (const Side side : kAllSides) {
      if (lines_[Index(side)]) {
        if (IsClosed(side, region)) beyond_[Index(side)] = 0.0;
      } else {
        beyond_[Index(side)] = EndOf(side, region, threshold);
      }
    }
    cut->rect = Bound(region, outwards, cut);
    cut->inkOutside = InkOutside(ink, cut->rect);
    cut->isBelieved = cut->rect.right > cut->rect.left && cut->rect.bottom > cut->rect.top;
    return true;
  }

 private:
  static size_t Index(Side side) { return static_cast<size_t>(side); }

  // The paper that the print lies on, where the print alone gave the angle.
  const SideGroup* PaperOfPrint() const {
    const auto groups = sides_.view();
    const auto found = std::ranges::find_if(groups, [this](const SideGroup& group) {
      return !group.isRim && std::abs(group.degrees - decision_.degrees) <= kPaperDegrees;
    });
    return found == groups.end() ? nullptr : &*found;
  }

  // How far out a line lies from the middle of the picture.
  double OutnessOf(const SideLine& line, Side side) const {
    return evidence::InsideOf(line, side, 0.0).Inside(axes_.middle.x, axes_.middle.y);
  }

  // The group's own lines, at the threshold where they lie furthest out within a soft edge; for
  // its missing sides the innermost line that leans alike: light beyond it moves it out again.
  void PickLines() {
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

  // Where the page's light starts from on a side without a line: the ends of the lines beside it,
  // or a little off the line opposite. Outwards positive, in page coordinates.
  double StartOf(Side side) const {
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
        const Point end = evidence::RunsAcross(other) ? Point{along, line->At(along)}
                                                      : Point{line->At(along), along};
        const Point place = axes_.ToPage(end);
        start = std::max(start, sign * (across ? place.y : place.x));
      }
    }
    return start;
  }

  // The half plane of the picture inside `outness` of a side of the upright page.
  HalfPlane UprightSide(Side side, double outness) const {
    const double sign = side == Side::kTop || side == Side::kLeft ? 1.0 : -1.0;
    HalfPlane plane = evidence::RunsAcross(side)
                          ? HalfPlane{-sign * axes_.sine, sign * axes_.cosine, 0.0}
                          : HalfPlane{sign * axes_.cosine, sign * axes_.sine, 0.0};
    plane.c = plane.a * axes_.middle.x + plane.b * axes_.middle.y - outness;
    return plane;
  }

  std::array<HalfPlane, kSides> Region() const {
    std::array<HalfPlane, kSides> region{};
    for (const Side side : kAllSides) {
      const auto& line = lines_[Index(side)];
      region[Index(side)] =
          line ? evidence::InsideOf(*line, side, 0.0) : UprightSide(side, StartOf(side));
    }
    return region;
  }

  // Whether the sides next to `side` are seen and end where they meet it: what is light beyond is
  // something else. Where one goes on, the line is a bar or a picture on the sheet.
  bool IsClosed(Side side, std::span<const HalfPlane, kSides> region) const {
    const HalfPlane& plane = region[Index(side)];
    for (const size_t next : {(Index(side) + 1) % kSides, (Index(side) + 3) % kSides}) {
      const auto& line = lines_[next];
      if (!line) return false;
      for (const double along : {line->from, line->to}) {
        const Point end = evidence::RunsAcross(kAllSides[next]) ? Point{along, line->At(along)}
                                                                : Point{line->At(along), along};
        if (plane.Inside(end.x, end.y) < -kOvershoot * page_.size()) return false;
      }
    }
    return true;
  }

  // How far beyond its start the page ends on a side without a line: at a dark gap, at the
  // picture's edge, or where its light ends.
  double EndOf(Side side, std::span<const HalfPlane, kSides> region, uint8_t threshold) const {
    const double gap = evidence::FirstGapBeyond(page_, threshold, region, side);
    if (std::isfinite(gap)) return gap;
    const bool runsOff = sides_.SidesOf(*group_)[Index(side)].onFrame >= kOnFrame;
    return runsOff ? 2.0 * page_.size() : beyond_[Index(side)];
  }

  CutRect Bound(std::span<const HalfPlane, kSides> region, double outwards, Cut* cut) const {
    Polygon polygon = PictureOf(page_.width(), page_.height());
    for (size_t i = 0; i < kSides; ++i) {
      HalfPlane plane = region[i];
      if (lines_[i]) {
        plane.c -= std::max(outwards, beyond_[i] + 1.0);
        cut->widened = std::max(cut->widened, beyond_[i] / page_.size());
      } else {
        plane.c -= beyond_[i] + kLightSlack * page_.size();
        ++cut->sidesUnseen;
      }
      polygon = Clip(polygon, plane);
    }
    CutRect rect{INFINITY, INFINITY, -INFINITY, -INFINITY};
    for (size_t i = 0; i < polygon.count; ++i) {
      const Point point = axes_.ToPage(polygon.points[i]);
      rect = {std::min(rect.left, point.x), std::min(rect.top, point.y),
              std::max(rect.right, point.x), std::max(rect.bottom, point.y)};
    }
    return rect;
  }

  double InkOutside(const InkPicture& ink, const CutRect& rect) const {
    const int32_t step = std::max(1, std::max(ink.width, ink.height) / kInkSamples);
    const double scale = static_cast<double>(1 << page_.reduced().shift);
    int64_t all = 0;
    int64_t outside = 0;
    for (int32_t y = 0; y < ink.height; y += step) {
      const uint8_t* row = ink.Row(y);
      for (int32_t x = 0; x < ink.width; ++x) {
        if (row[x] == 0) continue;
        ++all;
        const Point place = axes_.ToPage({x * scale, y * scale});
        outside += place.x < rect.left || place.x > rect.right || place.y < rect.top ||
                   place.y > rect.bottom;
      }
    }
    return all > 0 ? static_cast<double>(outside) / static_cast<double>(all) : 0.0;
  }

  const PageLevels& page_;
  const PaperSides& sides_;
  const Decision& decision_;
  PageAxes axes_;
  const SideGroup* group_ = nullptr;  // whose lines bound the page
  std::array<std::optional<SideLine>, kSides> lines_;
  std::array<double, kSides> beyond_{};  // how far the page goes on beyond each, in pixels
};

}  // namespace

CutRect WholePicture(double degrees, int32_t width, int32_t height) {
  const double right = width - 0.5;
  const double bottom = height - 0.5;
  return CutAround({Point{-0.5, -0.5}, {right, -0.5}, {right, bottom}, {-0.5, bottom}}, -degrees,
                   width, height);
}

bool FindCut(const PageLevels& page, const PaperSides& sides, const InkPicture& ink,
             const Decision& decision, double outwards, Cut* cut) {
  return Cutter(page, sides, decision).Find(ink, outwards, cut);
}

}  // namespace vorlane::judge
