#include <algorithm>
#include <cmath>
#include <numbers>

#include "engine/judge/finding.h"

namespace vorlane::judge {
namespace {

// The page's axes in the picture, for a page that is turned by `turnDegrees` to stand upright.
struct PageAxes {
  double cosine;
  double sine;
  Point middle;
};

PageAxes AxesOf(double turnDegrees, int32_t width, int32_t height) {
  const double skew = -turnDegrees * std::numbers::pi / 180.0;
  return {std::cos(skew), std::sin(skew), {(width - 1) / 2.0, (height - 1) / 2.0}};
}

}  // namespace

std::array<Point, 4> CornersOfCut(const CutRect& cut, double turnDegrees, int32_t width,
                                  int32_t height) {
  const PageAxes axes = AxesOf(turnDegrees, width, height);
  const auto toPicture = [&axes](double u, double v) {
    return Point{axes.middle.x + u * axes.cosine - v * axes.sine,
                 axes.middle.y + u * axes.sine + v * axes.cosine};
  };
  return {toPicture(cut.left, cut.top), toPicture(cut.right, cut.top),
          toPicture(cut.right, cut.bottom), toPicture(cut.left, cut.bottom)};
}

CutRect CutAround(const std::array<Point, 4>& corners, double turnDegrees, int32_t width,
                  int32_t height) {
  const PageAxes axes = AxesOf(turnDegrees, width, height);
  CutRect cut{INFINITY, INFINITY, -INFINITY, -INFINITY};
  for (const Point& corner : corners) {
    const double x = corner.x - axes.middle.x;
    const double y = corner.y - axes.middle.y;
    const double u = x * axes.cosine + y * axes.sine;
    const double v = y * axes.cosine - x * axes.sine;
    cut = {std::min(cut.left, u), std::min(cut.top, v), std::max(cut.right, u),
           std::max(cut.bottom, v)};
  }
  return cut;
}

}  // namespace vorlane::judge
