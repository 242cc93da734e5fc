#include "analysis/side_trace.h"

#include <utility>

#include "frame/arithmetic.h"
#include "vorlanepic/vorlanepic.h"

namespace vorlanepic::analysis {
namespace {

// Elements by which a full array grows: most sides need one step or two.
constexpr size_t kGrowth = 1000;

bool IsFarStep(frame::PixelPoint from, frame::PixelPoint to, int32_t maxGap) {
  return frame::WrapAbs(frame::WrapSub(to.y, from.y)) > maxGap ||
         frame::WrapAbs(frame::WrapSub(to.x, from.x)) > maxGap;
}

}  // namespace

int32_t AppendPoint(SideTrace* trace, BorderSegment* building, frame::PixelPoint point) {
  if (point.x < 0 || point.y < 0) return BAD_ARGUMENT;
  const auto count = static_cast<size_t>(trace->pointCount);
  if (count == trace->points.size() && !trace->points.Grow(kGrowth)) return OUT_OF_MEMORY;
  trace->points[count] = point;
  ++trace->pointCount;
  ++building->count;
  building->meanX = frame::WrapAdd(building->meanX, point.x);
  building->meanY = frame::WrapAdd(building->meanY, point.y);
  return STATUS_OK;
}

int32_t AppendSegment(SegmentList* list, const BorderSegment& segment) {
  const auto count = static_cast<size_t>(list->segmentCount);
  if (count == list->segments.size() && !list->segments.Grow(kGrowth)) return OUT_OF_MEMORY;
  list->segments[count] = segment;
  list->segments[count].used = false;
  ++list->segmentCount;
  return STATUS_OK;
}

int32_t TraceBuilder::Add(frame::PixelPoint point) {
  if (building_.count > 0) {
    const frame::PixelPoint last = trace_.points[static_cast<size_t>(trace_.pointCount) - 1];
    if (building_.count == settings_.SegmentPointNum ||
        IsFarStep(last, point, settings_.SegmentMaxGap)) {
      const int32_t status = CloseSegment();
      if (status != STATUS_OK) return status;
    }
  }
  return AppendPoint(&trace_, &building_, point);
}

int32_t TraceBuilder::Finish() { return CloseSegment(); }

int32_t TraceBuilder::CloseSegment() {
  BorderSegment closed = std::exchange(building_, BorderSegment{});
  if (closed.count == 0) return STATUS_OK;
  if (closed.count < settings_.SegmentMinPointNum) {
    trace_.pointCount -= closed.count;
    return STATUS_OK;
  }
  closed.meanX /= closed.count;
  closed.meanY /= closed.count;
  return AppendSegment(&trace_.list, closed);
}

SideTrace TraceBuilder::Take() {
  const frame::PixelPoint* first = trace_.points.data();
  for (BorderSegment& segment : trace_.list.view()) {
    segment.first = first;
    first += segment.count;
  }
  return std::move(trace_);
}

}  // namespace vorlanepic::analysis
