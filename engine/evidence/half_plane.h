// One side of a straight line, and regions that several of them leave.
#pragma once

#include <cstdint>
#include <span>

namespace vorlane::evidence {

// The points (x, y) with a * x + b * y >= c. Where (a, b) is of length 1, the difference is the
// distance from the line.
struct HalfPlane {
  double a = 0.0;
  double b = 0.0;
  double c = 0.0;

  double Inside(double x, double y) const { return a * x + b * y - c; }
};

// Columns from..to - 1.
struct ColumnSpan {
  int32_t from;
  int32_t to;
};

// The columns of row `y` of a picture of `width` columns that lie in all half planes.
ColumnSpan RowOfRegion(std::span<const HalfPlane> region, int32_t y, int32_t width);

}  // namespace vorlane::evidence
