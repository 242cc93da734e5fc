#include "omr/bar_segments.h"

#include <algorithm>
#include <cstddef>

#include "frame/arithmetic.h"
#include "frame/scratch.h"

namespace vorlanepic::omr {
namespace {

// Points first..last of an edge, both inclusive.
struct EdgeSegment {
  size_t first;
  size_t last;
  int32_t group;  // numbered from 1 in the order of founding; 0: none yet
};

class EdgeSegments {
 public:
  EdgeSegments(std::span<BarPoint> points, const EdgeAxes& axes, int32_t lo, int32_t hi)
      : points_(points), axes_(axes), lo_(lo), hi_(hi) {}

  [[nodiscard]] bool Cut();
  // Gives every segment its group; groups are looked for from founding segments only.
  void Group();
  // Number of the longest group, the first of equal ones; `lengths` has a zero for each segment and
  // one more.
  int32_t LongestGroup(std::span<int32_t> lengths) const;
  // Moves a segment's points to `to`, at or before their place, and returns the place after them.
  size_t Move(const EdgeSegment& segment, size_t to);

  std::span<const EdgeSegment> segments() const { return segments_.span().first(count_); }
  int32_t Extent(const EdgeSegment& segment) const {
    return frame::WrapSub(Along(segment.last), Along(segment.first));
  }

 private:
  int32_t Along(size_t i) const { return points_[i].*axes_.along; }
  int32_t Across(size_t i) const { return points_[i].*axes_.across; }

  bool IsCutAfter(size_t i) const {
    const int32_t step = (Across(i) - Across(i + 1)) / (Along(i) - Along(i + 1));
    return -step < lo_ || -step > hi_;
  }

  // Whether a later segment begins where the line of the founder, by its allowed steps, may arrive.
  bool Continues(const EdgeSegment& founder, const EdgeSegment& later) const {
    const double rise = Across(later.first) - Across(founder.last);
    const double run = Along(later.first) - Along(founder.last);
    const double step = -rise / run;
    return lo_ <= step && step <= hi_;
  }

  std::span<BarPoint> points_;
  EdgeAxes axes_;
  int32_t lo_;
  int32_t hi_;
  frame::ScratchArray<EdgeSegment> segments_;
  size_t count_ = 0;
};

bool EdgeSegments::Cut() {
  if (!segments_.Allocate(points_.size())) return false;
  size_t first = 0;
  for (size_t i = 0; i < points_.size(); ++i) {
    if (i + 1 < points_.size() && !IsCutAfter(i)) continue;
    segments_[count_++] = {first, i, 0};
    first = i + 1;
  }
  return true;
}

void EdgeSegments::Group() {
  int32_t groups = 0;
  for (size_t i = 0; i < count_; ++i) {
    if (segments_[i].group != 0) continue;
    segments_[i].group = ++groups;
    for (size_t j = i + 1; j < count_; ++j) {
      if (segments_[j].group == 0 && Continues(segments_[i], segments_[j])) {
        segments_[j].group = groups;
      }
    }
  }
}

int32_t EdgeSegments::LongestGroup(std::span<int32_t> lengths) const {
  for (const EdgeSegment& segment : segments()) {
    lengths[static_cast<size_t>(segment.group)] += Extent(segment);
  }
  // No group has number 0: it is skipped.
  const auto longest = std::max_element(lengths.begin() + 1, lengths.end());
  return static_cast<int32_t>(longest - lengths.begin());
}

size_t EdgeSegments::Move(const EdgeSegment& segment, size_t to) {
  const auto begin = points_.begin();
  const auto moved = std::copy(begin + static_cast<ptrdiff_t>(segment.first),
                               begin + static_cast<ptrdiff_t>(segment.last) + 1,
                               begin + static_cast<ptrdiff_t>(to));
  return static_cast<size_t>(moved - begin);
}

}  // namespace

bool KeepMainSegments(std::span<BarPoint> points, const EdgeAxes& axes, int32_t lo, int32_t hi,
                      size_t* kept) {
  EdgeSegments edge(points, axes, lo, hi);
  if (!edge.Cut()) return false;
  const std::span<const EdgeSegment> segments = edge.segments();
  *kept = points.size();
  if (segments.size() == 1) return true;
  if (segments.size() == 2) {
    const bool firstIsLonger = edge.Extent(segments[0]) > edge.Extent(segments[1]);
    *kept = edge.Move(segments[firstIsLonger ? 0 : 1], 0);
    return true;
  }

  frame::ScratchArray<int32_t> lengths;
  if (!lengths.Allocate(segments.size() + 1)) return false;
  edge.Group();
  const int32_t longest = edge.LongestGroup(lengths.span());
  *kept = 0;
  for (const EdgeSegment& segment : segments) {
    if (segment.group == longest) *kept = edge.Move(segment, *kept);
  }
  return true;
}

}  // namespace vorlanepic::omr
