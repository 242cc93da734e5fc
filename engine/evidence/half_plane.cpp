#include "engine/evidence/half_plane.h"

#include <algorithm>
#include <cmath>

namespace vorlane::evidence {

ColumnSpan RowOfRegion(std::span<const HalfPlane> region, int32_t y, int32_t width) {
  double low = 0.0;
  double high = width - 1.0;
  for (const HalfPlane& plane : region) {
    const double rest = plane.c - plane.b * y;
    if (std::abs(plane.a) < 1e-9) {
      if (rest > 0.0) high = -1.0;
    } else if (plane.a > 0.0) {
      low = std::max(low, rest / plane.a);
    } else {
      high = std::min(high, rest / plane.a);
    }
  }
  const auto from = static_cast<int32_t>(std::ceil(std::min(low, static_cast<double>(width))));
  return {from, std::max(from, static_cast<int32_t>(std::floor(std::max(high, -1.0))) + 1)};
}

}  // namespace vorlane::evidence
