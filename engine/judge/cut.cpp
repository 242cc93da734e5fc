#include "engine/judge/cut.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

#include "engine/judge/page_axes.h"

namespace vorlane::judge {
namespace {

using evidence::InkPicture;
using evidence::kAllSides;
using evidence::kSides;
using evidence::PageLevels;
using evidence::PaperSides;
using evidence::Side;
using evidence::SideGroup;
using evidence::SideLine;

// Groups whose lines bound the page too, in degrees, and how much further out than the page's own
// line one of theirs may lie, as a share of the picture's longer side.
constexpr double kSameDegrees = 0.35;
constexpr double kFurtherOut = 0.06;
// Bins of the light's extent; a bin with less than this share of the fullest is no page.
constexpr size_t kLightBins = 128;
constexpr double kLeastLight = 0.08;
// Light that goes on for so many bins beyond a line is page.
constexpr size_t kLightBeyond = 3;
// A trace that runs on the frame for this share says that the page runs off it.
constexpr double kOnFrame = 0.6;
constexpr double kMostInkOutside = 0.10;
constexpr double kMostLightOutside = 0.04;
// Pixels along the longer side at which light is sampled.
constexpr int32_t kLightSamples = 500;

// A convex polygon of at most 8 corners: a rectangle clipped four times.
struct Polygon {
  std::array<Point, 12> points{};
  size_t count = 0;
};

// How far a point lies inside a side's line, moved outwards.
double Inside(const SideLine& line, Side side, double outwards, Point point) {
  const bool across = evidence::RunsAcross(side);
  const double distance = (across ? point.y - line.At(point.x) : point.x - line.At(point.y)) /
                          std::sqrt(1.0 + line.slope * line.slope);
  const bool isFirst = side == Side::kTop || side == Side::kLeft;
  return (isFirst ? distance : -distance) + outwards;
}

// Sutherland and Hodgman's clipping by one line.
Polygon Clip(const Polygon& polygon, const SideLine& line, Side side, double outwards) {
  Polygon clipped;
  for (size_t i = 0; i < polygon.count; ++i) {
    const Point a = polygon.points[i];
    const Point b = polygon.points[(i + 1) % polygon.count];
    const double insideA = Inside(line, side, outwards, a);
    const double insideB = Inside(line, side, outwards, b);
    if (insideA >= 0.0) clipped.points[clipped.count++] = a;
    if ((insideA >= 0.0) != (insideB >= 0.0)) {
      const double share = insideA / (insideA - insideB);
      clipped.points[clipped.count++] = {a.x + share * (b.x - a.x), a.y + share * (b.y - a.y)};
    }
  }
  return clipped;
}

struct Extent {
  double low;
  double high;
};

class Cutter {
 public:
  Cutter(const PageLevels& page, const PaperSides& sides, const InkPicture& ink,
         const Decision& decision, double outwards)
      : page_(page),
        sides_(sides),
        ink_(ink),
        decision_(decision),
        outwards_(outwards),
        axes_(PageAxes::Of(decision.degrees, page.width(), page.height())) {}

  Cut Find() {
    PickLines();
    MeasureLight();
    Cut cut;
    DropLinesInLight();
    cut.rect = Bound();
    BoundByLight(&cut);
    cut.inkOutside = InkOutside(cut.rect);
    cut.lightOutside = LightOutside(cut.rect);
    const bool isBounded = std::ranges::all_of(kAllSides, [this](Side side) {
      return lines_[Index(side)].has_value() || RunsOffFrame(side);
    });
    cut.isSure = isBounded && !hasDropped_ && cut.inkOutside <= kMostInkOutside &&
                 cut.lightOutside <= kMostLightOutside;
    return cut;
  }

 private:
  static size_t Index(Side side) { return static_cast<size_t>(side); }

  // How far out a line lies from the middle of the picture.
  double OutnessOf(const SideLine& line, Side side) const {
    return Inside(line, side, 0.0, axes_.middle);
  }

  void PickLines() {
    for (const Side side : kAllSides) {
      std::optional<SideLine>& picked = lines_[Index(side)];
      if (decision_.group != nullptr && decision_.group->Has(side)) {
        picked = sides_.SidesOf(*decision_.group)[Index(side)];
      }
      const double own = picked ? OutnessOf(*picked, side) : INFINITY;
      for (const SideGroup& group : sides_.view()) {
        if (!group.Has(side) || std::abs(group.degrees - decision_.degrees) > kSameDegrees)
          continue;
        const SideLine& line = sides_.SidesOf(group)[Index(side)];
        const double outness = OutnessOf(line, side);
        if (outness > own + kFurtherOut * page_.size()) continue;
        if (!picked || outness > OutnessOf(*picked, side)) picked = line;
      }
    }
  }

  uint8_t Threshold() const {
    const auto levels = sides_.thresholds.view();
    if (decision_.group != nullptr) return levels[decision_.group->threshold];
    return levels.empty() ? uint8_t{128} : levels[0];
  }

  bool RunsOffFrame(Side side) const {
    const size_t threshold = decision_.group != nullptr ? decision_.group->threshold : 0;
    return sides_.sets[threshold][Index(side)].onFrame >= kOnFrame;
  }

  template <typename Visit>
  void ForEachLightPoint(Visit visit) const {
    const int32_t step = std::max(1, page_.size() / kLightSamples);
    const uint8_t threshold = Threshold();
    for (int32_t y = step / 2; y < page_.height(); y += step) {
      const uint8_t* row = page_.Row(y);
      for (int32_t x = step / 2; x < page_.width(); x += step) {
        if (row[x] >= threshold) {
          visit(axes_.ToPage({static_cast<double>(x), static_cast<double>(y)}));
        }
      }
    }
  }

  void MeasureLight() {
    const CutRect whole = WholePicture(decision_.degrees, page_.width(), page_.height());
    extentU_ = {whole.left, whole.right};
    extentV_ = {whole.top, whole.bottom};
    ForEachLightPoint([this](Point point) {
      ++lightU_[BinOf(point.x, extentU_)];
      ++lightV_[BinOf(point.y, extentV_)];
    });
    lightExtentU_ = LitExtent(lightU_, extentU_);
    lightExtentV_ = LitExtent(lightV_, extentV_);
  }

  static size_t BinOf(double place, const Extent& extent) {
    const double bin = (place - extent.low) / (extent.high - extent.low) * kLightBins;
    return static_cast<size_t>(std::clamp(bin, 0.0, kLightBins - 1.0));
  }

  static Extent LitExtent(const std::array<int32_t, kLightBins>& bins, const Extent& extent) {
    const double least = kLeastLight * *std::ranges::max_element(bins);
    const auto isLit = [least](int32_t count) { return count > 0 && count >= least; };
    const auto first = std::ranges::find_if(bins, isLit) - bins.begin();
    const auto last = std::find_if(bins.rbegin(), bins.rend(), isLit).base() - bins.begin();
    const double width = (extent.high - extent.low) / kLightBins;
    if (first >= last) return extent;
    return {extent.low + width * static_cast<double>(first),
            extent.low + width * static_cast<double>(last)};
  }

  // The light's end on a side, outwards positive, and a line's place there.
  double LightEnd(Side side) const {
    switch (side) {
      case Side::kTop:
        return -lightExtentV_.low;
      case Side::kBottom:
        return lightExtentV_.high;
      case Side::kLeft:
        return -lightExtentU_.low;
      default:
        return lightExtentU_.high;
    }
  }

  void DropLinesInLight() {
    for (const Side side : kAllSides) {
      std::optional<SideLine>& line = lines_[Index(side)];
      const Extent& extent = evidence::RunsAcross(side) ? extentV_ : extentU_;
      const double beyond = kLightBeyond * (extent.high - extent.low) / kLightBins;
      if (!line || LightEnd(side) - OutnessOf(*line, side) < beyond) continue;
      line.reset();
      hasDropped_ = true;
    }
  }

  CutRect Bound() const {
    Polygon polygon;
    const double right = page_.width() - 0.5;
    const double bottom = page_.height() - 0.5;
    polygon.points = {Point{-0.5, -0.5}, {right, -0.5}, {right, bottom}, {-0.5, bottom}};
    polygon.count = 4;
    for (const Side side : kAllSides) {
      const auto& line = lines_[Index(side)];
      if (line) polygon = Clip(polygon, *line, side, outwards_);
    }
    CutRect rect{INFINITY, INFINITY, -INFINITY, -INFINITY};
    for (size_t i = 0; i < polygon.count; ++i) {
      const Point point = axes_.ToPage(polygon.points[i]);
      rect = {std::min(rect.left, point.x), std::min(rect.top, point.y),
              std::max(rect.right, point.x), std::max(rect.bottom, point.y)};
    }
    return polygon.count > 0 ? rect
                             : WholePicture(decision_.degrees, page_.width(), page_.height());
  }

  void BoundByLight(Cut* cut) const {
    for (const Side side : kAllSides) {
      if (lines_[Index(side)]) continue;
      if (RunsOffFrame(side))
        ++cut->sidesOffFrame;
      else
        ++cut->sidesUnseen;
      const double end = LightEnd(side) + outwards_;
      switch (side) {
        case Side::kTop:
          cut->rect.top = std::max(cut->rect.top, -end);
          break;
        case Side::kBottom:
          cut->rect.bottom = std::min(cut->rect.bottom, end);
          break;
        case Side::kLeft:
          cut->rect.left = std::max(cut->rect.left, -end);
          break;
        default:
          cut->rect.right = std::min(cut->rect.right, end);
      }
    }
  }

  static bool Holds(const CutRect& rect, Point point) {
    return point.x >= rect.left && point.x <= rect.right && point.y >= rect.top &&
           point.y <= rect.bottom;
  }

  double LightOutside(const CutRect& rect) const {
    int64_t all = 0;
    int64_t outside = 0;
    ForEachLightPoint([&](Point point) {
      ++all;
      outside += !Holds(rect, point);
    });
    return all > 0 ? static_cast<double>(outside) / static_cast<double>(all) : 0.0;
  }

  double InkOutside(const CutRect& rect) const {
    const int32_t step = std::max(1, std::max(ink_.width, ink_.height) / kLightSamples);
    const double scale = static_cast<double>(1 << page_.reduced().shift);
    int64_t all = 0;
    int64_t outside = 0;
    for (int32_t y = 0; y < ink_.height; y += step) {
      const uint8_t* row = ink_.Row(y);
      for (int32_t x = 0; x < ink_.width; ++x) {
        if (row[x] == 0) continue;
        ++all;
        outside += !Holds(rect, axes_.ToPage({x * scale, y * scale}));
      }
    }
    return all > 0 ? static_cast<double>(outside) / static_cast<double>(all) : 0.0;
  }

  const PageLevels& page_;
  const PaperSides& sides_;
  const InkPicture& ink_;
  const Decision& decision_;
  double outwards_;
  PageAxes axes_;
  std::array<std::optional<SideLine>, kSides> lines_;
  bool hasDropped_ = false;
  std::array<int32_t, kLightBins> lightU_{};
  std::array<int32_t, kLightBins> lightV_{};
  Extent extentU_{};
  Extent extentV_{};
  Extent lightExtentU_{};
  Extent lightExtentV_{};
};

}  // namespace

CutRect WholePicture(double degrees, int32_t width, int32_t height) {
  const double right = width - 0.5;
  const double bottom = height - 0.5;
  return CutAround({Point{-0.5, -0.5}, {right, -0.5}, {right, bottom}, {-0.5, bottom}}, -degrees,
                   width, height);
}

Cut FindCut(const PageLevels& page, const PaperSides& sides, const InkPicture& ink,
            const Decision& decision, double outwards) {
  return Cutter(page, sides, ink, decision, outwards).Find();
}

}  // namespace vorlane::judge
