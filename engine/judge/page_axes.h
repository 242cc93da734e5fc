// The page's own directions in the picture.
#pragma once

#include <cmath>
#include <cstdint>
#include <numbers>

#include "engine/judge/finding.h"

namespace vorlane::judge {

// Turns places of the picture into places of the turned page, whose middle (0, 0) is that of the
// picture: u to the right along the page's lines, v down.
struct PageAxes {
  double cosine;
  double sine;
  Point middle;

  // For a page that lies turned clockwise by `degrees` in a picture of width x height.
  static PageAxes Of(double degrees, int32_t width, int32_t height) {
    const double radians = degrees * std::numbers::pi / 180.0;
    return {std::cos(radians), std::sin(radians), {(width - 1) / 2.0, (height - 1) / 2.0}};
  }

  Point ToPage(Point point) const {
    const double x = point.x - middle.x;
    const double y = point.y - middle.y;
    return {x * cosine + y * sine, y * cosine - x * sine};
  }
  Point ToPicture(Point point) const {
    return {middle.x + point.x * cosine - point.y * sine,
            middle.y + point.x * sine + point.y * cosine};
  }
};

}  // namespace vorlane::judge
