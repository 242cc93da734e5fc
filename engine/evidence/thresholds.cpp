#include "engine/evidence/thresholds.h"

#include <algorithm>
#include <cstdlib>

#include "analysis/threshold.h"

namespace vorlane::evidence {
namespace {

// Thresholds that lie nearer than this find the same sides.
constexpr int32_t kLevelsApart = 5;
// A margin darker than this is the dark of the surround itself.
constexpr int32_t kDarkestMargin = 80;
// Pixels looked at, at least; the shares of the classes are then known to a thousandth.
constexpr int64_t kSamples = 400000;

// Counts, and sums of levels, of the levels below each: 257 entries.
struct Moments {
  std::array<double, 257> counts{};
  std::array<double, 257> sums{};

  // Share of the variance between classes that levels from..to - 1 add as one class.
  double Between(size_t from, size_t to) const {
    const double count = counts[to] - counts[from];
    if (count <= 0.0) return 0.0;
    const double sum = sums[to] - sums[from];
    return sum * sum / count;
  }
};

using Histogram = std::array<uint32_t, 256>;

// Every so many rows and columns are looked at.
int32_t SampleStep(const PageLevels& page) {
  int32_t step = 1;
  while (int64_t{page.width()} * page.height() / (step * step) > 4 * kSamples) step *= 2;
  return step;
}

// Counts in four places in turn: neighbours are mostly alike, and one count would wait for the one
// before it.
Histogram CountLevels(const PageLevels& page) {
  const int32_t step = SampleStep(page);
  std::array<Histogram, 4> counts{};
  for (int32_t y = step / 2; y < page.height(); y += step) {
    const uint8_t* row = page.Row(y);
    size_t turn = 0;
    for (int32_t x = 0; x < page.width(); x += step) ++counts[turn++ % 4][row[x]];
  }
  Histogram all{};
  for (const Histogram& part : counts) {
    for (size_t level = 0; level < all.size(); ++level) all[level] += part[level];
  }
  return all;
}

// Whether there are dark and light pixels in a picture of 1 bit: mostly told by its first rows.
bool HasBothLevels(const PageLevels& page) {
  const int32_t step = SampleStep(page);
  const uint8_t first = page.Row(std::min(step / 2, page.height() - 1))[0];
  for (int32_t y = step / 2; y < page.height(); y += step) {
    const uint8_t* row = page.Row(y);
    for (int32_t x = 0; x < page.width(); x += step) {
      if (row[x] != first) return true;
    }
  }
  return false;
}

Moments MomentsOf(const Histogram& counts) {
  Moments moments;
  for (size_t level = 0; level < 256; ++level) {
    moments.counts[level + 1] = moments.counts[level] + counts[level];
    moments.sums[level + 1] = moments.sums[level] + static_cast<double>(level) * counts[level];
  }
  return moments;
}

// Otsu's threshold: the first level of the upper class.
int32_t SplitInTwo(const Moments& moments) {
  double best = -1.0;
  size_t split = 128;
  for (size_t t = 1; t < 256; ++t) {
    const double between = moments.Between(0, t) + moments.Between(t, 256);
    if (between > best) {
      best = between;
      split = t;
    }
  }
  return static_cast<int32_t>(split);
}

// The same for three classes.
std::array<int32_t, 2> SplitInThree(const Moments& moments) {
  double best = -1.0;
  std::array<int32_t, 2> split{85, 170};
  for (size_t low = 1; low < 255; ++low) {
    const double lowest = moments.Between(0, low);
    for (size_t high = low + 1; high < 256; ++high) {
      const double between = lowest + moments.Between(low, high) + moments.Between(high, 256);
      if (between > best) {
        best = between;
        split = {static_cast<int32_t>(low), static_cast<int32_t>(high)};
      }
    }
  }
  return split;
}

void AddLevel(int32_t level, Thresholds* thresholds) {
  level = std::clamp(level, 1, 255);
  for (const uint8_t known : thresholds->view()) {
    if (std::abs(level - known) < kLevelsApart) return;
  }
  thresholds->levels[thresholds->count++] = static_cast<uint8_t>(level);
}

}  // namespace

Thresholds ChooseThresholds(const PageLevels& page) {
  Thresholds thresholds;
  if (page.hasTwoLevels()) {
    if (HasBothLevels(page)) AddLevel(128, &thresholds);
    return thresholds;
  }
  const Histogram counts = CountLevels(page);
  const auto levelsSeen = std::ranges::count_if(counts, [](uint32_t n) { return n > 0; });
  if (levelsSeen < 2) return thresholds;
  if (levelsSeen == 2 && counts[0] > 0 && counts[255] > 0) {
    AddLevel(128, &thresholds);
    return thresholds;
  }
  const Moments moments = MomentsOf(counts);
  AddLevel(SplitInTwo(moments), &thresholds);
  uint8_t margin = 0;
  if (vorlanepic::analysis::EstimateThreshold(page.image(), &margin) == STATUS_OK) {
    AddLevel(std::max<int32_t>(margin, kDarkestMargin), &thresholds);
  }
  for (const int32_t level : SplitInThree(moments)) AddLevel(level, &thresholds);
  return thresholds;
}

}  // namespace vorlane::evidence
