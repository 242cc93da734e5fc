#include "app/services/threshold_choice.h"

#include <algorithm>
#include <array>

#include "analysis/threshold.h"

namespace vorlane::services {
namespace {

using Histogram = std::array<double, 256>;

// Of every fourth pixel each way: levels as the border scan reads them.
Histogram CountLevels(const ImageRec& image) {
  Histogram counts{};
  for (int32_t y = 0; y < image.height; y += 4) {
    const uint8_t* row = image.rows[y];
    for (int32_t x = 0; x < image.width; x += 4) {
      ++counts[image.bitsPerPixel == 8 ? row[x]
                                       : std::max({row[3 * x], row[3 * x + 1], row[3 * x + 2]})];
    }
  }
  return counts;
}

int32_t BestSplit(const Histogram& counts) {
  double total = 0;
  double totalSum = 0;
  for (size_t i = 0; i < counts.size(); ++i) {
    total += counts[i];
    totalSum += static_cast<double>(i) * counts[i];
  }
  // Between two levels that stand apart every split is as good: the middle one is taken.
  int32_t first = 127;
  int32_t last = 127;
  double best = 0;
  double below = 0;
  double belowSum = 0;
  for (size_t i = 0; i + 1 < counts.size(); ++i) {
    below += counts[i];
    belowSum += static_cast<double>(i) * counts[i];
    const double above = total - below;
    if (below == 0 || above == 0) continue;
    const double apart = belowSum / below - (totalSum - belowSum) / above;
    const double between = below * above * apart * apart;
    if (between > best) {
      best = between;
      first = static_cast<int32_t>(i);
    }
    if (between >= best) last = static_cast<int32_t>(i);
  }
  return (first + last) / 2;
}

}  // namespace

int32_t SplitLevel(const ImageRec& image) {
  return image.bitsPerPixel == 1 ? 127 : BestSplit(CountLevels(image));
}

int32_t PageThreshold(const ImageRec& image) {
  constexpr uint8_t kLeast = 80;
  uint8_t estimate = 0;
  if (vorlanepic::analysis::EstimateThreshold(image, &estimate) != STATUS_OK || estimate < kLeast)
    return kLeast;
  return SplitLevel(image) + 1;
}

std::vector<int32_t> ThresholdsToTry(const ImageRec& image) {
  if (image.bitsPerPixel == 1) return {};
  const int32_t split = SplitLevel(image) + 1;
  std::vector<int32_t> levels = {split};
  // A little darker for grey paper beside white, a little lighter for a grey mount.
  for (const int32_t level : {split * 3 / 4, split / 2, split + (255 - split) / 3}) {
    if (level >= 1 && level <= 255) levels.push_back(level);
  }
  return levels;
}

}  // namespace vorlane::services
