// Straight lines through border segments and points.
#pragma once

#include <cstdint>

#include "analysis/border_records.h"
#include "frame/arithmetic.h"

namespace vorlanepic::analysis {

// Whether the line has a place and a direction.
inline bool IsFitted(const BorderLine& line) {
  return line.kind == LineKind::kHorizontal || line.kind == LineKind::kVertical ||
         line.kind == LineKind::kGeneral;
}

// Signed distances in pixels from a fitted line, truncated toward zero. What is the same
// for all points is computed once.
class LineDistance {
 public:
  explicit LineDistance(const BorderLine& line);

  int32_t Of(frame::PixelPoint p) const {
    return frame::TruncToInt32((rowFactor_ * p.y - offset_ - p.x * columnFactor_) / length_);
  }

 private:
  double rowFactor_;
  double offset_;
  double columnFactor_;
  double length_;
};

// Signed distance in pixels of (x, y) from `line`, truncated toward zero, in *distance. For a
// general line it is positive below the line (towards larger y), for a vertical one to its left.
// Returns STATUS_OK, or BAD_ARGUMENT for a line that is not fitted.
int32_t DistanceToLine(int32_t x, int32_t y, const BorderLine& line, int32_t* distance);

// Fits `line` through the means of the segments of `list`: through the mean of their first half and
// that of their second half. Its angle is never negative.
// Returns STATUS_OK; BAD_ARGUMENT for fewer than 2 segments; ANGLE_NOT_FOUND when the halves meet.
int32_t FitChordLine(BorderLine* line, const SegmentList& list);

// Fits `line` through the points of the segments of `list`, half against half. Sets the kind to
// not fitted first; `list.pointTotal` is up to date. Its angle is signed.
// Returns STATUS_OK; BAD_ARGUMENT for no segment or fewer than 2 points; ANGLE_NOT_FOUND when the
// halves meet.
int32_t FitPointLine(BorderLine* line, const SegmentList& list);

}  // namespace vorlanepic::analysis
