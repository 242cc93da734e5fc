#include "engine/evidence/side_contrast.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <span>

namespace vorlane::evidence {
namespace {

constexpr int32_t kPlaces = 64;
constexpr int32_t kNearest = 2;
constexpr int32_t kFurthest = 4;

// The mean level of the pixels kNearest..kFurthest from a place of the line, in `direction` across
// it; negative where they are not all inside the picture.
int32_t LevelBeside(const PageLevels& page, Side side, int32_t along, int32_t across,
                    int32_t direction) {
  const bool runsAcross = RunsAcross(side);
  const int32_t end = across + direction * kFurthest;
  const int32_t begin = across + direction * kNearest;
  const int32_t limit = runsAcross ? page.height() : page.width();
  if (std::min(begin, end) < 0 || std::max(begin, end) >= limit) return -1;
  int32_t sum = 0;
  for (int32_t i = kNearest; i <= kFurthest; ++i) {
    const int32_t place = across + direction * i;
    sum += runsAcross ? page.Row(place)[along] : page.Row(along)[place];
  }
  return sum / (kFurthest - kNearest + 1);
}

double MedianOf(std::span<int32_t> values) {
  const auto middle = values.begin() + static_cast<ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

}  // namespace

void MeasureContrast(const PageLevels& page, Side side, SideLine* line) {
  const int32_t inwards = side == Side::kTop || side == Side::kLeft ? 1 : -1;
  std::array<int32_t, kPlaces> steps{};
  std::array<int32_t, kPlaces> levels{};
  size_t count = 0;
  for (int32_t i = 0; i < kPlaces; ++i) {
    const double along = line->from + line->length() * (i + 0.5) / kPlaces;
    const auto across = static_cast<int32_t>(std::lround(line->At(along)));
    const auto place = static_cast<int32_t>(along);
    const int32_t inside = LevelBeside(page, side, place, across, inwards);
    const int32_t outside = LevelBeside(page, side, place, across, -inwards);
    if (inside < 0 || outside < 0) continue;
    levels[count] = outside;
    steps[count++] = inside - outside;
  }
  line->contrast = count > 0 ? MedianOf(std::span(steps).first(count)) : 0.0;
  line->outside = count > 0 ? MedianOf(std::span(levels).first(count)) : 0.0;
}

}  // namespace vorlane::evidence
