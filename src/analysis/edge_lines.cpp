#include "analysis/edge_lines.h"

#include <cstdlib>

#include "analysis/border_line.h"
#include "analysis/segment_selection.h"
#include "analysis/side_trace.h"
#include "frame/arithmetic.h"
#include "frame/settings.h"

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

// A part of a trace that an edge is taken from: segments first .. end - 1.
struct SegmentRange {
  const SegmentList* list;
  int32_t first;
  int32_t end;
};

// Where the four edges come from.
struct EdgeSources {
  SegmentRange e1;
  SegmentRange e2;
  SegmentRange e3;
  SegmentRange e4;
};

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

void DecideArrangement(const ExtremePoints& extremes) {
  const int32_t below = frame::WrapSub(extremes.bottommost.y, extremes.leftmost.y);
  const int32_t above = frame::WrapSub(extremes.leftmost.y, extremes.topmost.y);
  frame::settings.EdgeArrangement = below > above ? 1 : 2;
}

SegmentRange WholeSide(const SideTrace& side, int32_t trim) {
  return {&side.list, trim, side.list.segmentCount - trim};
}

// The part of a side behind its last extreme segment.
SegmentRange SideBehind(const SideTrace& side, int32_t extremeLast, int32_t trim) {
  return {&side.list, extremeLast + trim, side.list.segmentCount - trim};
}

// The part of a side ahead of its first extreme segment.
SegmentRange SideAhead(const SideTrace& side, int32_t extremeFirst, int32_t trim) {
  return {&side.list, trim, extremeFirst - trim};
}

EdgeSources WholeSides(const BorderTraces& traces, int32_t arrangement, int32_t trim) {
  const SegmentRange left = WholeSide(traces.left, trim);
  const SegmentRange right = WholeSide(traces.right, trim);
  const SegmentRange top = WholeSide(traces.top, trim);
  const SegmentRange bottom = WholeSide(traces.bottom, trim);
  return arrangement == 1 ? EdgeSources{top, left, bottom, right}
                          : EdgeSources{left, bottom, right, top};
}

EdgeSources SidesBeyondExtremes(const BorderTraces& traces, int32_t arrangement, int32_t trim) {
  if (arrangement == 1) {
    return {SideBehind(traces.top, frame::settings.TopExtremeSegLast, trim),
            SideBehind(traces.left, frame::settings.LeftExtremeSegLast, trim),
            SideAhead(traces.bottom, frame::settings.BottomExtremeSegFirst, trim),
            SideAhead(traces.right, frame::settings.RightExtremeSegFirst, trim)};
  }
  return {SideAhead(traces.left, frame::settings.LeftExtremeSegFirst, trim),
          SideBehind(traces.bottom, frame::settings.BottomExtremeSegLast, trim),
          SideBehind(traces.right, frame::settings.RightExtremeSegLast, trim),
          SideAhead(traces.top, frame::settings.TopExtremeSegFirst, trim)};
}

// Picks the sources and sets EdgeArrangement where they depend on it.
EdgeSources PickSources(const ExtremePoints& extremes, int32_t straightness,
                        const BorderTraces& traces) {
  const int32_t trim = kTrimPoints / frame::settings.SegmentPointNum;
  if (straightness == 0 && frame::settings.BorderMethod == 1) return WholeSides(traces, 1, trim);
  DecideArrangement(extremes);
  if (straightness == 0 && frame::settings.BorderMethod == 3) {
    return WholeSides(traces, frame::settings.EdgeArrangement, trim);
  }
  return SidesBeyondExtremes(traces, frame::settings.EdgeArrangement, trim);
}

int32_t TakeSegments(const SegmentRange& source, EdgeLine* edge) {
  for (int32_t i = source.first; i < source.end; ++i) {
    const int32_t status =
        AppendSegment(&edge->list, source.list->segments[static_cast<size_t>(i)]);
    if (status != STATUS_OK) return status;
  }
  return STATUS_OK;
}

}  // namespace

int32_t BuildEdges(const ImageRec* image, const ExtremePoints* extremes, int32_t* straightness,
                   const BorderTraces* traces, DocumentEdges* edges) {
  if (image == nullptr || extremes == nullptr || straightness == nullptr || traces == nullptr ||
      edges == nullptr) {
    return BAD_ARGUMENT;
  }
  int32_t status = Imgbuf_Check(image);
  if (status != STATUS_OK) return status;

  *straightness = 1;
  bool areStraight = false;
  status = TestStraightness(*extremes, image->height, *traces, &areStraight);
  if (status != STATUS_OK) return status;
  if (areStraight) *straightness = 0;

  const EdgeSources sources = PickSources(*extremes, *straightness, *traces);
  const struct {
    const SegmentRange& source;
    EdgeLine* edge;
  } parts[] = {{sources.e1, &edges->e1},
               {sources.e2, &edges->e2},
               {sources.e3, &edges->e3},
               {sources.e4, &edges->e4}};
  for (const auto& part : parts) {
    status = TakeSegments(part.source, part.edge);
    if (status != STATUS_OK) return status;
  }
  int32_t code = 0;
  for (const auto& part : parts) {
    status = SelectSegments(&part.edge->list, *straightness, ++code);
    if (status != STATUS_OK) return status;
  }
  return STATUS_OK;
}

}  // namespace vorlanepic::analysis
