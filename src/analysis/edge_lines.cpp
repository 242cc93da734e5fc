#include "analysis/edge_lines.h"

#include <array>
#include <cstddef>

#include "analysis/border_line.h"
#include "analysis/segment_selection.h"
#include "analysis/side_trace.h"
#include "frame/arithmetic.h"

namespace vorlanepic::analysis {
namespace {

// Segments left out at both ends of an edge, near the corners, are worth this many points.
constexpr int32_t kTrimPoints = 32;

// A side is straight when more than this share of its segments lies nearer to its chord than this,
// in pixels.
constexpr double kStraightShare = 0.6;
constexpr int32_t kStraightDistance = 36;

// Sides of a page that touches the first or last row also stand steeper than this, in degrees.
constexpr double kSteepDegrees = 80.0;
constexpr double kAnyDegrees = -1.0;

// A part of a side's trace that an edge is taken from: segments first .. end - 1.
struct SegmentRange {
  Side side;
  int32_t first;
  int32_t end;
};

// Where the four edges come from, E1 to E4.
using EdgeRanges = std::array<SegmentRange, 4>;

// Whether a side is straight and its chord steeper than `leastDegrees`, in *isStraight.
int32_t TestSide(const SideTrace& side, double leastDegrees, bool* isStraight) {
  BorderLine chord;
  const int32_t status = FitChordLine(&chord, side.list);
  if (status != STATUS_OK) return status;
  int32_t near = 0;
  for (const BorderSegment& segment : side.list.view()) {
    int32_t distance = 0;
    DistanceToLine(segment.meanX, segment.meanY, chord, &distance);
    if (frame::WrapAbs(distance) < kStraightDistance) ++near;
  }
  *isStraight = near > kStraightShare * side.list.segmentCount && chord.angle > leastDegrees;
  return STATUS_OK;
}

// Whether two opposite sides are straight: the longer ones, or the left and right ones, steep, on a
// page that touches the first or last row.
int32_t TestStraightness(const ExtremePoints& extremes, int32_t height, const BorderTraces& traces,
                         bool* areStraight) {
  const bool isFree = extremes.topmost.y > 0 && extremes.bottommost.y < height - 1;
  const bool isTall = frame::WrapSub(extremes.rightmost.x, extremes.leftmost.x) <=
                      frame::WrapSub(extremes.bottommost.y, extremes.topmost.y);
  const bool takesSides = !isFree || isTall;
  const double leastDegrees = isFree ? kAnyDegrees : kSteepDegrees;

  int32_t status = TestSide(takesSides ? traces.left : traces.top, leastDegrees, areStraight);
  if (status != STATUS_OK || !*areStraight) return status;
  return TestSide(takesSides ? traces.right : traces.bottom, leastDegrees, areStraight);
}

Arrangement DecideArrangement(const ExtremePoints& extremes) {
  const int32_t below = frame::WrapSub(extremes.bottommost.y, extremes.leftmost.y);
  const int32_t above = frame::WrapSub(extremes.leftmost.y, extremes.topmost.y);
  return below > above ? Arrangement::kTopFirst : Arrangement::kLeftFirst;
}

const SideTrace& TraceOf(const BorderTraces& traces, Side side) {
  switch (side) {
    case Side::kLeft:
      return traces.left;
    case Side::kRight:
      return traces.right;
    case Side::kTop:
      return traces.top;
    default:
      return traces.bottom;
  }
}

constexpr std::array<Side, 4> SidesOf(Arrangement arrangement) {
  if (arrangement == Arrangement::kLeftFirst) {
    return {Side::kLeft, Side::kBottom, Side::kRight, Side::kTop};
  }
  return {Side::kTop, Side::kLeft, Side::kBottom, Side::kRight};
}

EdgeRanges WholeSides(const BorderTraces& traces, Arrangement arrangement, int32_t trim) {
  EdgeRanges ranges{};
  for (size_t i = 0; i < ranges.size(); ++i) {
    const Side side = SidesOf(arrangement)[i];
    ranges[i] = {side, trim, TraceOf(traces, side).list.segmentCount - trim};
  }
  return ranges;
}

// Each side gives the part behind its last extreme segment or ahead of its first.
EdgeRanges SidesBeyondExtremes(const BorderTraces& traces, const ExtremePoints& extremes,
                               Arrangement arrangement, int32_t trim) {
  const auto behind = [&](Side side, const ExtremeSegments& extreme) -> SegmentRange {
    return {side, extreme.last + trim, TraceOf(traces, side).list.segmentCount - trim};
  };
  const auto ahead = [&](Side side, const ExtremeSegments& extreme) -> SegmentRange {
    return {side, trim, extreme.first - trim};
  };
  if (arrangement == Arrangement::kTopFirst) {
    return {behind(Side::kTop, extremes.topSegments), behind(Side::kLeft, extremes.leftSegments),
            ahead(Side::kBottom, extremes.bottomSegments),
            ahead(Side::kRight, extremes.rightSegments)};
  }
  return {ahead(Side::kLeft, extremes.leftSegments), behind(Side::kBottom, extremes.bottomSegments),
          behind(Side::kRight, extremes.rightSegments), ahead(Side::kTop, extremes.topSegments)};
}

// Picks what the edges are taken from and sets the arrangement where that depends on it.
EdgeRanges PickRanges(const frame::Settings& settings, const ExtremePoints& extremes,
                      EdgeSource source, const BorderTraces& traces, Arrangement* arrangement) {
  const int32_t trim = kTrimPoints / settings.SegmentPointNum;
  const bool takesWhole = source == EdgeSource::kWholeSides;
  if (takesWhole && settings.BorderMethod == 1) {
    return WholeSides(traces, Arrangement::kTopFirst, trim);
  }
  *arrangement = DecideArrangement(extremes);
  if (takesWhole && settings.BorderMethod == 3) return WholeSides(traces, *arrangement, trim);
  return SidesBeyondExtremes(traces, extremes, *arrangement, trim);
}

int32_t TakeSegments(const BorderTraces& traces, const SegmentRange& range, EdgeLine* edge) {
  edge->side = range.side;
  const SegmentList& list = TraceOf(traces, range.side).list;
  for (int32_t i = range.first; i < range.end; ++i) {
    const int32_t status = AppendSegment(&edge->list, list.segments[static_cast<size_t>(i)]);
    if (status != STATUS_OK) return status;
  }
  return STATUS_OK;
}

}  // namespace

int32_t BuildEdges(const frame::Settings& settings, const ImageRec& image,
                   const ExtremePoints& extremes, const BorderTraces& traces, EdgeOrigin* origin,
                   DocumentEdges* edges) {
  int32_t status = Imgbuf_Check(&image);
  if (status != STATUS_OK) return status;

  bool areStraight = false;
  status = TestStraightness(extremes, image.height, traces, &areStraight);
  if (status != STATUS_OK) return status;
  if (areStraight) origin->source = EdgeSource::kWholeSides;

  const EdgeRanges ranges =
      PickRanges(settings, extremes, origin->source, traces, &origin->arrangement);
  EdgeLine* const lines[] = {&edges->e1, &edges->e2, &edges->e3, &edges->e4};
  for (size_t i = 0; i < ranges.size(); ++i) {
    status = TakeSegments(traces, ranges[i], lines[i]);
    if (status != STATUS_OK) return status;
  }
  constexpr EdgeCode kCodes[] = {EdgeCode::kE1, EdgeCode::kE2, EdgeCode::kE3, EdgeCode::kE4};
  for (size_t i = 0; i < ranges.size(); ++i) {
    status = SelectSegments(settings, origin->source, kCodes[i], &lines[i]->list);
    if (status != STATUS_OK) return status;
  }
  return STATUS_OK;
}

}  // namespace vorlanepic::analysis
