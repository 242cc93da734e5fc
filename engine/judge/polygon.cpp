#include "engine/judge/polygon.h"

#include <algorithm>

namespace vorlane::judge {

using evidence::HalfPlane;

Polygon PolygonOf(const std::array<Point, 4>& corners) {
  Polygon polygon;
  std::ranges::copy(corners, polygon.points.begin());
  polygon.count = corners.size();
  return polygon;
}

Polygon PictureOutline(int32_t width, int32_t height) {
  const double right = width - 0.5;
  const double bottom = height - 0.5;
  return PolygonOf({Point{-0.5, -0.5}, {right, -0.5}, {right, bottom}, {-0.5, bottom}});
}

// Sutherland and Hodgman's clipping by one line.
Polygon Clip(const Polygon& polygon, const HalfPlane& plane) {
  Polygon clipped;
  const auto add = [&clipped](Point point) {
    // A convex outline gains one point at most; rounding may see more where it has no area.
    if (clipped.count < clipped.points.size()) clipped.points[clipped.count++] = point;
  };
  for (size_t i = 0; i < polygon.count; ++i) {
    const Point a = polygon.points[i];
    const Point b = polygon.points[(i + 1) % polygon.count];
    const double insideA = plane.Inside(a.x, a.y);
    const double insideB = plane.Inside(b.x, b.y);
    if (insideA >= 0.0) add(a);
    if ((insideA >= 0.0) != (insideB >= 0.0)) {
      const double share = insideA / (insideA - insideB);
      add({a.x + share * (b.x - a.x), a.y + share * (b.y - a.y)});
    }
  }
  return clipped;
}

Polygon Common(const Polygon& polygon, const std::array<Point, 4>& corners) {
  Polygon common = polygon;
  for (size_t i = 0; i < corners.size(); ++i) {
    const Point from = corners[i];
    const Point to = corners[(i + 1) % corners.size()];
    HalfPlane right{from.y - to.y, to.x - from.x, 0.0};
    right.c = right.a * from.x + right.b * from.y;
    common = Clip(common, right);
  }
  return common;
}

double AreaOf(const Polygon& polygon) {
  double twice = 0.0;
  for (size_t i = 2; i < polygon.count; ++i) {
    const Point& origin = polygon.points[0];
    const Point& a = polygon.points[i - 1];
    const Point& b = polygon.points[i];
    twice += (a.x - origin.x) * (b.y - origin.y) - (a.y - origin.y) * (b.x - origin.x);
  }
  return twice / 2.0;
}

}  // namespace vorlane::judge
