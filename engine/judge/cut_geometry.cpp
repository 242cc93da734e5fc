#include <algorithm>
#include <cmath>

#include "engine/judge/finding.h"
#include "engine/judge/page_axes.h"

namespace vorlane::judge {

std::array<Point, 4> CornersOfCut(const CutRect& cut, double turnDegrees, int32_t width,
                                  int32_t height) {
  const PageAxes axes = PageAxes::Of(-turnDegrees, width, height);
  return {axes.ToPicture({cut.left, cut.top}), axes.ToPicture({cut.right, cut.top}),
          axes.ToPicture({cut.right, cut.bottom}), axes.ToPicture({cut.left, cut.bottom})};
}

CutRect CutAround(const std::array<Point, 4>& corners, double turnDegrees, int32_t width,
                  int32_t height) {
  const PageAxes axes = PageAxes::Of(-turnDegrees, width, height);
  CutRect cut{INFINITY, INFINITY, -INFINITY, -INFINITY};
  for (const Point& corner : corners) {
    const Point place = axes.ToPage(corner);
    cut = {std::min(cut.left, place.x), std::min(cut.top, place.y), std::max(cut.right, place.x),
           std::max(cut.bottom, place.y)};
  }
  return cut;
}

}  // namespace vorlane::judge
