#include "analysis/border_line.h"

#include <cmath>
#include <span>

#include "frame/arithmetic.h"
#include "frame/trigonometry.h"
#include "vorlanepic/vorlanepic.h"

namespace vorlanepic::analysis {
namespace {

// Chords nearer to an axis than this are taken for horizontal or vertical, in degrees.
constexpr double kFlatDegrees = 0.5;
constexpr double kSteepDegrees = 89.5;

// Sums of positions.
struct PointSum {
  int32_t x = 0;
  int32_t y = 0;

  void Add(EdgePoint point) {
    x = frame::WrapAdd(x, point.x);
    y = frame::WrapAdd(y, point.y);
  }
  EdgePoint MeanOf(int32_t count) const { return {x / count, y / count}; }
};

EdgePoint MeanOfSegments(std::span<const BorderSegment> segments) {
  PointSum sum;
  for (const BorderSegment& segment : segments) sum.Add({segment.meanX, segment.meanY});
  return sum.MeanOf(static_cast<int32_t>(segments.size()));
}

void SetVertical(BorderLine* line, double x) {
  line->kind = kLineVertical;
  line->angle = 90.0;
  line->slope = 0.0;
  line->intercept = x;
}

void SetHorizontal(BorderLine* line, double y) {
  line->kind = kLineHorizontal;
  line->angle = 0.0;
  line->slope = 0.0;
  line->intercept = y;
}

double SlopeBetween(EdgePoint a, EdgePoint b) {
  return static_cast<double>(frame::WrapSub(b.y, a.y)) / frame::WrapSub(b.x, a.x);
}

// Puts the line's point midway between the halves' means and settles the lines along an axis.
// Returns whether that is all there is to do.
bool SetMidpointAndAxis(BorderLine* line, EdgePoint a, EdgePoint b) {
  line->midX = frame::WrapAdd(a.x, b.x) >> 1;
  line->midY = frame::WrapAdd(a.y, b.y) >> 1;
  if (a.x == b.x) {
    SetVertical(line, a.x);
    return true;
  }
  if (a.y == b.y) {
    SetHorizontal(line, a.y);
    return true;
  }
  return false;
}

}  // namespace

LineDistance::LineDistance(const BorderLine& line)
    : rowFactor_(1.0), offset_(line.intercept), columnFactor_(0.0), length_(1.0) {
  if (line.kind == kLineVertical) {
    rowFactor_ = 0.0;
    offset_ = -line.intercept;
    columnFactor_ = 1.0;
  } else if (line.kind == kLineGeneral) {
    columnFactor_ = line.slope;
    length_ = std::sqrt(line.slope * line.slope + 1.0);
  }
}

int32_t DistanceToLine(int32_t x, int32_t y, const BorderLine& line, int32_t* distance) {
  if (!IsFitted(line)) return BAD_ARGUMENT;
  *distance = LineDistance(line).Of({x, y});
  return STATUS_OK;
}

int32_t FitChordLine(BorderLine* line, const SegmentList& list) {
  const std::span<const BorderSegment> segments = list.view();
  if (segments.size() < 2) return BAD_ARGUMENT;
  const EdgePoint a = MeanOfSegments(segments.first(segments.size() / 2));
  const EdgePoint b = MeanOfSegments(segments.subspan(segments.size() / 2));
  if (a.x == b.x && a.y == b.y) return ANGLE_NOT_FOUND;
  if (SetMidpointAndAxis(line, a, b)) return STATUS_OK;

  const double slope = SlopeBetween(a, b);
  const double angle = frame::ArcTangent(std::abs(slope)) * frame::kDegreesPerRadian;
  if (angle <= kFlatDegrees) {
    SetHorizontal(line, line->midY);
  } else if (angle >= kSteepDegrees) {
    SetVertical(line, line->midX);
  } else {
    line->kind = kLineGeneral;
    line->slope = slope;
    line->angle = angle;
    line->intercept = a.y - a.x * slope;
  }
  return STATUS_OK;
}

int32_t FitPointLine(BorderLine* line, const SegmentList& list) {
  line->kind = kLineNotFitted;
  if (list.segmentCount < 1 || list.pointTotal < 2) return BAD_ARGUMENT;

  // With an odd total the last point is left over.
  const int32_t half = list.pointTotal / 2;
  PointSum first;
  PointSum second;
  int32_t taken = 0;
  for (const BorderSegment& segment : list.view()) {
    for (const EdgePoint& point : std::span(segment.first, static_cast<size_t>(segment.count))) {
      if (taken == 2 * half) break;
      (taken < half ? first : second).Add(point);
      ++taken;
    }
  }
  const EdgePoint a = first.MeanOf(half);
  const EdgePoint b = second.MeanOf(half);
  if (a.x == b.x && a.y == b.y) return ANGLE_NOT_FOUND;
  if (SetMidpointAndAxis(line, a, b)) return STATUS_OK;

  line->kind = kLineGeneral;
  line->slope = SlopeBetween(a, b);
  line->angle = frame::ArcTangent(line->slope) * frame::kDegreesPerRadian;
  line->intercept = line->midY - line->midX * line->slope;
  return STATUS_OK;
}

}  // namespace vorlanepic::analysis
