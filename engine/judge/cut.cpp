#include "engine/judge/cut.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>

#include "engine/evidence/light_beyond.h"
#include "engine/judge/page_axes.h"
#include "engine/judge/page_lines.h"
#include "engine/judge/polygon.h"
#include "engine/judge/print_beyond.h"

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

// The paper leans as the page does within this, in degrees, where print alone gave the angle, and
// where a single side agreed with the print.
constexpr double kPaperDegrees = 3.0;
constexpr double kBesideDegrees = 1.0;
// Where no line is seen, the cut ends this much beyond the page's light, as a share of the longer
// side.
constexpr double kLightSlack = 0.004;
// A side beyond whose end a neighbouring one goes on by this share is none of the sheet's.
constexpr double kOvershoot = 0.005;
constexpr double kOnFrame = 0.25;
// A gap is the page's end where it begins no further beyond the ends of the neighbours.
constexpr double kGapWithin = 0.025;
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
        lines_(page, sides, axes_),
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
    *cut = {};
    return FindWithin(ink, outwards, cut);
  }

 private:
  // Bounds the page by the group's lines. False when there is no memory.
  bool FindWithin(const InkPicture& ink, double outwards, Cut* cut) {
    if (!lines_.Find(*group_)) return false;
    const std::array<HalfPlane, kSides> region = lines_.Region();
    if (!evidence::MeasureLightBeyond(page_, lines_.Threshold(), region, &light_)) return false;
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
      return !group.isRim && group.count >= 3 && lines_.ThresholdOf(group) < lines_.Threshold() &&
             std::abs(group.degrees - group_->degrees) <= kSameDegrees;
    });
    return found == groups.end() ? nullptr : &*found;
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

  bool RunsOff(Side side) const {
    return lines_.WasBar(Index(side)) || sides_.SidesOf(*group_)[Index(side)].onFrame >= kOnFrame;
  }

  // How far beyond its start a side without a line ends at a dark gap, or INFINITY.
  double GapBeyond(Side side, std::span<const HalfPlane, kSides> region) const {
    if (lines_.WasBar(Index(side)) || !lines_.HasNeighbour(Index(side))) return INFINITY;
    const double gap = evidence::FirstGapBeyond(page_, lines_.Threshold(), region, side);
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
    } else if (RunsOff(side) || !lines_.HasNeighbour(Index(side))) {
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
      if (!line || lines_.IsAtFrame(PointAt(*line, next, isFirst ? line->from : line->to)))
        return false;
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
        lines_.Drop(i);
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
  PageLines lines_;
  uint8_t darkest_;                   // of the thresholds
  const SideGroup* group_ = nullptr;  // whose lines bound the page
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
