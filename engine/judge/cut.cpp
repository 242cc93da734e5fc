#include "engine/judge/cut.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>
#include <optional>

#include "engine/evidence/inner_trace.h"
#include "engine/evidence/light_beyond.h"
#include "engine/evidence/side_contrast.h"
#include "engine/judge/page_axes.h"
#include "engine/judge/polygon.h"
#include "engine/judge/print_beyond.h"
#include "vorlanepic/vorlanepic.h"

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
constexpr double kBesideDegrees = 1.0;
// The same side at another threshold may lie this much further out, as a share of the picture's
// longer side: the page's edge is soft.
constexpr double kSoftShare = 0.006;
// Where no line is seen, the page is taken to reach this far from the opposite side, and the cut
// to end this much beyond its light; both shares of the longer side.
constexpr double kLeastPage = 0.1;
constexpr double kLightSlack = 0.004;
// A side beyond whose end a neighbouring one goes on by this share is none of the sheet's.
constexpr double kOvershoot = 0.005;
constexpr double kOnFrame = 0.25;
// A line is no side where so much of the trace beside it runs at the picture's edge.
constexpr double kContradicted = 0.3;
// A side is looked for from inside from this far within the ends of its neighbours, and a gap is
// the page's end where it begins no further beyond them; shares of the longer side.
constexpr double kStartInside = 0.015;
constexpr double kGapWithin = 0.025;
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
// Where the page runs off the picture, its other sides end this near to the frame.
constexpr double kFrameShare = 0.02;
// A side that is not the group's own is given up where it cuts off this share of the print.
constexpr double kPrintLost = 0.02;
// Beyond this share of it the cut may be around a picture on the sheet.
constexpr double kOtherPaper = 0.1;

class Cutter {
 public:
  Cutter(const PageLevels& page, const PaperSides& sides, const Decision& decision)
      : page_(page),
        sides_(sides),
        decision_(decision),
        axes_(PageAxes::Of(decision.degrees, page.width(), page.height())),
        darkest_(sides.thresholds.count > 0 ? std::ranges::min(sides.thresholds.view())
                                            : uint8_t{0}) {}

  bool Find(const InkPicture& ink, double outwards, Cut* cut) {
    *cut = {};
    PickGroup();
    if (group_ == nullptr) {
      cut->rect = WholePicture(decision_.degrees, page_.width(), page_.height());
      return true;
    }
    if (!FindWithin(ink, outwards, cut)) return false;
    if (cut->inkOutside <= kOtherPaper) return true;
    const SideGroup* around = PaperAround();
    if (around == nullptr) return true;
    group_ = around;
    lines_ = {};
    *cut = {};
    return FindWithin(ink, outwards, cut);
  }

 private:
  // Bounds the page by the group's lines. False when there is no memory.
  bool FindWithin(const InkPicture& ink, double outwards, Cut* cut) {
    PickLines();
    DropBars();
    DropFarLines();
    if (!LookFromInside()) return false;
    const std::array<HalfPlane, kSides> region = Region();
    if (!evidence::MeasureLightBeyond(page_, Threshold(), region, &light_)) return false;
    for (const Side side : kAllSides) EndSide(side, region);
    cut->rect = Bound(region, outwards);
    std::array<double, kSides> inkBeyond = SharesBeyond(page_, ink, axes_, darkest_, cut->rect);
    if (WidenForPrint(inkBeyond)) {
      cut->rect = Bound(region, outwards);
      inkBeyond = SharesBeyond(page_, ink, axes_, darkest_, cut->rect);
    }
    Tell(cut);
    if (cut->isBelieved) cut->inkOutside = std::accumulate(inkBeyond.begin(), inkBeyond.end(), 0.0);
    return true;
  }

  // What the cut ends at on one side.
  enum class End {
    kLine,    // the side's line, and the light right beyond it
    kClosed,  // the side's line: what is light beyond is something else
    kGap,     // a dark gap
    kLight,   // where the light ends
    kFrame,   // the picture's own edge
  };

  static size_t Index(Side side) { return static_cast<size_t>(side); }

  // A page in perspective is bounded by all its sides, a rim bounds none.
  void PickGroup() {
    group_ = decision_.group;
    if (group_ == nullptr || group_->isRim) group_ = PaperOfPrint();
    if (group_ != nullptr && group_->count == 1) group_ = PaperBesideSide();
    const double off = std::abs(sides_.quad.degrees - decision_.degrees);
    if (sides_.hasQuad && off <= kPaperDegrees && (group_ == nullptr || group_->count < 4)) {
      group_ = &sides_.quad;
    }
  }

  // The paper that the print lies on, where the print alone gave the angle.
  const SideGroup* PaperOfPrint() const {
    const auto groups = sides_.view();
    const auto found = std::ranges::find_if(groups, [this](const SideGroup& group) {
      return !group.isRim && std::abs(group.degrees - decision_.degrees) <= kPaperDegrees;
    });
    return found == groups.end() ? nullptr : &*found;
  }

  // The paper of more sides that leans nearly as the single side that agreed with the print, which
  // may be another sheet's or the straight part of a curved one; else that side.
  const SideGroup* PaperBesideSide() const {
    const auto groups = sides_.view();
    const auto found = std::ranges::find_if(groups, [this](const SideGroup& group) {
      return !group.isRim && group.HasBothDirections() &&
             std::abs(group.degrees - decision_.degrees) <= kBesideDegrees;
    });
    return found == groups.end() ? group_ : &*found;
  }

  // Paper that leans alike and shows at a darker level: what the group bounds may be a picture on
  // it.
  const SideGroup* PaperAround() const {
    const auto groups = sides_.view();
    const auto found = std::ranges::find_if(groups, [this](const SideGroup& group) {
      return !group.isRim && group.count >= 3 && ThresholdOf(group) < Threshold() &&
             std::abs(group.degrees - group_->degrees) <= kSameDegrees;
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
        const Point place = axes_.ToPage(PointAt(*line, Index(other), along));
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
        const Point end = PointAt(*line, next, along);
        if (plane.Inside(end.x, end.y) < -kOvershoot * page_.size()) return false;
      }
    }
    return true;
  }

  uint8_t ThresholdOf(const SideGroup& group) const {
    return sides_.thresholds.levels[group.threshold];
  }
  uint8_t Threshold() const { return ThresholdOf(*group_); }

  bool RunsOff(Side side) const {
    return isBar_[Index(side)] || sides_.SidesOf(*group_)[Index(side)].onFrame >= kOnFrame;
  }

  bool HasNeighbour(Side side) const {
    return lines_[(Index(side) + 1) % kSides] || lines_[(Index(side) + 3) % kSides];
  }

  // Looks for each side that is missing from where its neighbours end. False when there is no
  // memory.
  bool LookFromInside() {
    for (const Side side : kAllSides) {
      if (lines_[Index(side)] || isBar_[Index(side)] || !HasNeighbour(side)) continue;
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
  double Surround() const {
    double level = 255.0;
    for (const Side side : kAllSides) {
      if (group_->Has(side)) level = std::min(level, sides_.SidesOf(*group_)[Index(side)].outside);
    }
    return level;
  }

  // Takes away the lines that both neighbours end before, with a gap behind: those of another
  // sheet.
  void DropFarLines() {
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
  bool IsGapBefore(const SideLine& line, Side side) const {
    const std::array<HalfPlane, kSides> region = Region();
    const Point middle = PointAt(line, Index(side), (line.from + line.to) / 2.0);
    const double distance = -region[Index(side)].Inside(middle.x, middle.y);
    return evidence::FirstGapBeyond(page_, Threshold(), region, side) < distance - kGapBefore;
  }

  static Point PointAt(const SideLine& line, size_t side, double along) {
    return evidence::RunsAcross(kAllSides[side]) ? Point{along, line.At(along)}
                                                 : Point{line.At(along), along};
  }

  bool IsAtFrame(Point place) const {
    return std::min(place.x, place.y) <= kAtFrame || place.x >= page_.width() - 1.0 - kAtFrame ||
           place.y >= page_.height() - 1.0 - kAtFrame;
  }

  // Whether both ends of a line lie inside a half plane. One at the frame is not seen to end.
  bool EndsInside(const SideLine& line, size_t side, const HalfPlane& plane) const {
    for (const double along : {line.from, line.to}) {
      const Point end = PointAt(line, side, along);
      if (plane.Inside(end.x, end.y) <= 0.0 || IsAtFrame(end)) return false;
    }
    return true;
  }

  // Takes away the lines that are a bar's: the page runs off the picture there.
  void DropBars() {
    for (const Side side : kAllSides) {
      const auto& line = lines_[Index(side)];
      isBar_[Index(side)] = line && (IsBar(side) || IsContradicted(*line, side));
    }
    for (const Side side : kAllSides) {
      if (isBar_[Index(side)]) lines_[Index(side)].reset();
    }
  }

  // Whether the trace beside a line runs at the picture's edge, at every threshold that sees it.
  bool IsContradicted(const SideLine& line, Side side) const {
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
  bool IsBar(Side side) const {
    const SideLine& line = *lines_[Index(side)];
    if (line.outside <= Surround() + kBarLevels) return false;
    const double across = line.At((line.from + line.to) / 2);
    const double extent = evidence::RunsAcross(side) ? page_.height() : page_.width();
    return std::min(across, extent - 1.0 - across) <= kBarShare * page_.size();
  }

  // How far beyond its start a side without a line ends at a dark gap, or INFINITY.
  double GapBeyond(Side side, std::span<const HalfPlane, kSides> region) const {
    if (isBar_[Index(side)] || !HasNeighbour(side)) return INFINITY;
    const double gap = evidence::FirstGapBeyond(page_, Threshold(), region, side);
    return gap <= kGapWithin * page_.size() ? gap : INFINITY;
  }

  // Whether the lines next to a side that runs off the picture reach the picture's edge there. A
  // sheet that ends before it is not seen to end.
  bool NeighboursReachFrame(Side side) const {
    const double within = kFrameShare * page_.size();
    for (const size_t next : {(Index(side) + 1) % kSides, (Index(side) + 3) % kSides}) {
      const auto& line = lines_[next];
      if (!line) continue;
      const bool isFirst = side == Side::kTop || side == Side::kLeft;
      const double extent = evidence::RunsAcross(kAllSides[next]) ? page_.width() : page_.height();
      const double end = isFirst ? line->from : extent - 1.0 - line->to;
      const double across = line->At(isFirst ? line->from : line->to);
      const double acrossExtent =
          evidence::RunsAcross(kAllSides[next]) ? page_.height() : page_.width();
      if (end > within && across > within && acrossExtent - 1.0 - across > within) return false;
    }
    return true;
  }

  // Decides what the cut ends at on one side, and how far beyond its line or its start.
  void EndSide(Side side, std::span<const HalfPlane, kSides> region) {
    const size_t i = Index(side);
    beyond_[i] = light_[i];
    if (lines_[i]) {
      ends_[i] = IsClosed(side, region) ? End::kClosed : End::kLine;
      if (ends_[i] == End::kClosed) beyond_[i] = 0.0;
      return;
    }
    const double gap = GapBeyond(side, region);
    if (std::isfinite(gap)) {
      ends_[i] = End::kGap;
      beyond_[i] = gap;
    } else if (RunsOff(side) || !HasNeighbour(side)) {
      EndAtFrame(side);
    } else {
      ends_[i] = End::kLight;
    }
  }

  // Nothing tells where the page ends before the picture does.
  void EndAtFrame(Side side) {
    ends_[Index(side)] = End::kFrame;
    beyond_[Index(side)] = 2.0 * page_.size();
  }

  // Whether both neighbours of a side are seen to end inside the picture: the sheet ends there.
  bool HasCorners(Side side) const {
    const bool isFirst = side == Side::kTop || side == Side::kLeft;
    for (const size_t next : {(Index(side) + 1) % kSides, (Index(side) + 3) % kSides}) {
      const auto& line = lines_[next];
      if (!line || IsAtFrame(PointAt(*line, next, isFirst ? line->from : line->to))) return false;
    }
    return true;
  }

  // Gives up what cuts print off but is no line of the group's own. False when nothing does.
  bool WidenForPrint(std::span<const double, kSides> inkBeyond) {
    bool isWidened = false;
    for (const Side side : kAllSides) {
      const size_t i = Index(side);
      const bool isOwn = lines_[i] && group_->Has(side);
      if (inkBeyond[i] <= kPrintLost || isOwn || HasCorners(side)) continue;
      if (ends_[i] == End::kFrame || ends_[i] == End::kLight) continue;
      if (ends_[i] == End::kClosed && light_[i] > 0.0) {
        ends_[i] = End::kLine;
        beyond_[i] = light_[i];
      } else {
        lines_[i].reset();
        EndAtFrame(side);
      }
      isWidened = true;
    }
    return isWidened;
  }

  void Tell(Cut* cut) const {
    cut->isBelieved = cut->rect.right > cut->rect.left && cut->rect.bottom > cut->rect.top;
    for (const Side side : kAllSides) {
      const size_t i = Index(side);
      const double light = light_[i] / page_.size();
      switch (ends_[i]) {
        case End::kLine:
          cut->widened = std::max(cut->widened, light);
          break;
        case End::kClosed:
          cut->lightOutside = std::max(cut->lightOutside, light);
          break;
        case End::kFrame:
          cut->isBelieved = cut->isBelieved && NeighboursReachFrame(side);
          ++(RunsOff(side) ? cut->sidesOffFrame : cut->sidesUnseen);
          break;
        default:
          ++cut->sidesUnseen;
      }
    }
  }

  CutRect Bound(std::span<const HalfPlane, kSides> region, double outwards) const {
    Polygon polygon = PictureOutline(page_.width(), page_.height());
    for (size_t i = 0; i < kSides; ++i) {
      HalfPlane plane = region[i];
      plane.c -= lines_[i] ? std::max(outwards, beyond_[i] + 1.0)
                           : beyond_[i] + kLightSlack * page_.size();
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

  const PageLevels& page_;
  const PaperSides& sides_;
  const Decision& decision_;
  PageAxes axes_;
  uint8_t darkest_;                   // of the thresholds
  const SideGroup* group_ = nullptr;  // whose lines bound the page
  std::array<std::optional<SideLine>, kSides> lines_;
  std::array<bool, kSides> isBar_{};
  std::array<double, kSides>
      light_{};  // how far light goes on beyond each line or start, in pixels
  std::array<End, kSides> ends_{};
  std::array<double, kSides> beyond_{};  // how far beyond it the cut ends
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
