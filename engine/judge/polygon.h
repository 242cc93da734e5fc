// Convex outlines in the picture.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "engine/evidence/half_plane.h"
#include "engine/judge/finding.h"

namespace vorlane::judge {

// A convex outline, clockwise as seen: a rectangle that was clipped up to eight times. Of fewer
// than three points: nothing.
struct Polygon {
  std::array<Point, 16> points{};
  size_t count = 0;
};

Polygon PolygonOf(const std::array<Point, 4>& corners);
Polygon PictureOutline(int32_t width, int32_t height);

// The part of `polygon` that lies in the half plane.
Polygon Clip(const Polygon& polygon, const evidence::HalfPlane& plane);

// What lies in `polygon` and in the rectangle of these corners, clockwise as seen.
Polygon Common(const Polygon& polygon, const std::array<Point, 4>& corners);

double AreaOf(const Polygon& polygon);

}  // namespace vorlane::judge
