#include "rotate/region_index.h"

#include <algorithm>

namespace vorlanepic::rotate {

RegionIndex::Limits RegionIndex::Join(const Limits& a, const Limits& b) {
  return {std::min(a.leastLeft, b.leastLeft), std::max(a.greatestLeft, b.greatestLeft),
          std::min(a.leastRight, b.leastRight), std::max(a.greatestRight, b.greatestRight)};
}

bool RegionIndex::Build(const RowSpans& region, int32_t width) {
  top_ = region.top;
  rowCount_ = region.bottom - region.top + 1;
  size_t entries = 0;
  levels_ = 0;
  for (auto size = static_cast<size_t>(rowCount_);; size = (size + 1) / 2) {
    levelStart_[levels_++] = entries;
    entries += size;
    if (size == 1) break;
  }
  if (!limits_.Allocate(entries)) return false;

  const auto rows = static_cast<size_t>(rowCount_);
  for (size_t y = 0; y < rows; ++y) {
    const RowSpan& span = region.spans[static_cast<size_t>(top_) + y];
    const int32_t left = std::max(span.left, 0);
    const int32_t right = std::min(span.right, width - 1);
    limits_[y] = {left, left, right, right};
  }
  for (int32_t level = 1; level < levels_; ++level) {
    const Limits* below = &limits_[levelStart_[level - 1]];
    const size_t count = levelStart_[level] - levelStart_[level - 1];
    for (size_t i = 0; 2 * i < count; ++i) {
      const size_t second = std::min(2 * i + 1, count - 1);
      limits_[levelStart_[level] + i] = Join(below[2 * i], below[second]);
    }
  }
  return true;
}

RegionIndex::Limits RegionIndex::LimitsOf(int32_t first, int32_t last) const {
  // Blocks of about a quarter of the rows: few to visit, and little beyond the rows asked for.
  int32_t level = 0;
  while (level + 1 < levels_ && (last - first) >> level >= 4) ++level;
  const Limits* blocks = &limits_[levelStart_[level]];
  Limits all = blocks[first >> level];
  for (int32_t i = (first >> level) + 1; i <= last >> level; ++i) all = Join(all, blocks[i]);
  return all;
}

bool RegionIndex::Holds(const frame::PixelRect& rect) const {
  const int32_t first = rect.top - top_;
  const int32_t last = rect.bottom - top_;
  if (first < 0 || last >= rowCount_) return false;
  const Limits limits = LimitsOf(first, last);
  return rect.left >= limits.greatestLeft && rect.right <= limits.leastRight;
}

bool RegionIndex::Misses(const frame::PixelRect& rect) const {
  const int32_t first = std::max(rect.top - top_, 0);
  const int32_t last = std::min(rect.bottom - top_, rowCount_ - 1);
  if (first > last) return true;
  const Limits limits = LimitsOf(first, last);
  return rect.right < limits.leastLeft || rect.left > limits.greatestRight;
}

}  // namespace vorlanepic::rotate
