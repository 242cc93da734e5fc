#include "engine/evidence/inner_trace.h"

#include <cmath>

namespace vorlane::evidence {
namespace {

// Dark pixels in a row that end the page; fewer are dust.
constexpr int32_t kDarkPixels = 3;

// Walks along rows for the left and the right side and along columns for the others.
class InnerWalker {
 public:
  InnerWalker(const PageLevels& page, uint8_t threshold, std::span<const HalfPlane, kSides> region,
              Side side)
      : page_(page),
        threshold_(threshold),
        region_(region),
        side_(side),
        direction_(side == Side::kTop || side == Side::kLeft ? -1 : 1),
        limit_(RunsAcross(side) ? page.height() : page.width()) {}

  int32_t Places() const { return RunsAcross(side_) ? page_.width() : page_.height(); }

  // The last light pixel before the first dark run on the way out, or -1.
  int32_t Walk(int32_t along) const {
    const int32_t start = StartAt(along);
    int32_t dark = 0;
    for (int32_t at = start; start >= 0 && at >= 0 && at < limit_; at += direction_) {
      dark = LevelAt(along, at) < threshold_ ? dark + 1 : 0;
      if (dark == kDarkPixels) return at - direction_ * kDarkPixels;
    }
    return -1;
  }

  // The point that the core's walk from the frame would stop at for an outermost light pixel.
  vorlanepic::frame::PixelPoint PointOf(int32_t along, int32_t light) const {
    if (RunsAcross(side_)) return {along, light};
    return {light - direction_, along};
  }

 private:
  uint8_t LevelAt(int32_t along, int32_t at) const {
    return RunsAcross(side_) ? page_.Row(at)[along] : page_.Row(along)[at];
  }

  // Where the side's own line crosses a row or column, or -1 outside the neighbouring sides.
  int32_t StartAt(int32_t along) const {
    const auto place = static_cast<size_t>(side_);
    const HalfPlane& plane = region_[place];
    const bool across = RunsAcross(side_);
    const double steep = across ? plane.b : plane.a;
    if (std::abs(steep) < 0.1) return -1;
    const double at = (plane.c - (across ? plane.a : plane.b) * along) / steep;
    const double x = across ? along : at;
    const double y = across ? at : along;
    for (const size_t next : {(place + 1) % kSides, (place + 3) % kSides}) {
      if (region_[next].Inside(x, y) < 0.0) return -1;
    }
    return at >= 0.0 && at < limit_ ? static_cast<int32_t>(at) : -1;
  }

  const PageLevels& page_;
  uint8_t threshold_;
  std::span<const HalfPlane, kSides> region_;
  Side side_;
  int32_t direction_;  // outwards
  int32_t limit_;
};

}  // namespace

bool TraceFromInside(const PageLevels& page, uint8_t threshold,
                     std::span<const HalfPlane, kSides> region, Side side,
                     vorlanepic::analysis::SideTrace* trace) {
  const InnerWalker walker(page, threshold, region, side);
  const int32_t places = walker.Places();
  if (!trace->points.Allocate(static_cast<size_t>(places / 2 + 1))) return false;
  for (int32_t along = 0; along < places; along += 2) {
    const int32_t light = walker.Walk(along);
    if (light < 0) continue;
    trace->points[static_cast<size_t>(trace->pointCount++)] = walker.PointOf(along, light);
  }
  return true;
}

}  // namespace vorlane::evidence
