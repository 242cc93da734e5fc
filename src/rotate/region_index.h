// Answers for whole rectangles whether the region of a rotation holds them.
#pragma once

#include <cstdint>

#include "frame/geometry.h"
#include "frame/scratch.h"
#include "rotate/row_spans.h"

namespace vorlanepic::rotate {

// A min-max pyramid: the extremes of the region's limits over blocks of 1, 2, 4, ... rows, about
// two entries a row. Answers about more than one row may be cautious; answers about one row are
// exact.
class RegionIndex {
 public:
  // Indexes rows top..bottom of `region` in a source of `width` columns; limits outside the source
  // are cut to it. False when there is no memory.
  [[nodiscard]] bool Build(const RowSpans& region, int32_t width);

  // True only when every pixel of `rect` lies in the region.
  bool Holds(const frame::PixelRect& rect) const;
  // True only when no pixel of `rect` lies in the region.
  bool Misses(const frame::PixelRect& rect) const;

 private:
  struct Limits {
    int32_t leastLeft;
    int32_t greatestLeft;
    int32_t leastRight;
    int32_t greatestRight;
  };

  static Limits Join(const Limits& a, const Limits& b);
  // The limits of at least rows first..last, both counted from top.
  Limits LimitsOf(int32_t first, int32_t last) const;

  int32_t top_ = 0;
  int32_t rowCount_ = 0;
  int32_t levels_ = 0;
  size_t levelStart_[32] = {};  // level l has one entry for every 2^l rows
  frame::ScratchArray<Limits> limits_;
};

}  // namespace vorlanepic::rotate
