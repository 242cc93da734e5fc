#include "engine/evidence/side_contrast.h"

#include <algorithm>
#include <array>
#include <cmath>

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

}  // namespace

double ContrastOf(const PageLevels& page, Side side, const SideLine& line) {
  const int32_t inwards = side == Side::kTop || side == Side::kLeft ? 1 : -1;
  std::array<int32_t, kPlaces> steps{};
  size_t count = 0;
  for (int32_t i = 0; i < kPlaces; ++i) {
    const double along = line.from + line.length() * (i + 0.5) / kPlaces;
    const auto across = static_cast<int32_t>(std::lround(line.At(along)));
    const auto place = static_cast<int32_t>(along);
    const int32_t inside = LevelBeside(page, side, place, across, inwards);
    const int32_t outside = LevelBeside(page, side, place, across, -inwards);
    if (inside >= 0 && outside >= 0) steps[count++] = inside - outside;
  }
  if (count == 0) return 0.0;
  const auto middle = steps.begin() + static_cast<ptrdiff_t>(count / 2);
  std::nth_element(steps.begin(), middle, steps.begin() + static_cast<ptrdiff_t>(count));
  return *middle;
}

}  // namespace vorlane::evidence
