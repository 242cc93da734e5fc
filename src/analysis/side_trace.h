// Gathers border points of one side into segments of neighbouring points.
#pragma once

#include <cstdint>

#include "analysis/border_records.h"
#include "frame/settings.h"

namespace vorlanepic::analysis {

// Appends (x, y) to the trace and to the segment that is being built.
// Returns STATUS_OK; BAD_ARGUMENT for a negative coordinate; OUT_OF_MEMORY.
int32_t AppendPoint(SideTrace* trace, BorderSegment* building, frame::PixelPoint point);

// Appends a copy of `segment`, unmarked. Returns STATUS_OK or OUT_OF_MEMORY.
int32_t AppendSegment(SegmentList* list, const BorderSegment& segment);

// A side while it is traced. Points arrive in the order along the border; a segment is closed when
// it holds SegmentPointNum points or the next point lies more than SegmentMaxGap away in x or y,
// and is dropped with its points when it holds fewer than SegmentMinPointNum.
class TraceBuilder {
 public:
  // The settings stay as they are while the side is traced.
  explicit TraceBuilder(const frame::Settings& settings) : settings_(settings) {}

  // Each returns STATUS_OK; BAD_ARGUMENT for a negative coordinate; OUT_OF_MEMORY.
  int32_t Add(frame::PixelPoint point);
  int32_t Finish();  // closes the last segment

  // Whether anything was kept.
  bool IsEmpty() const { return trace_.pointCount == 0 || trace_.list.segmentCount == 0; }

  // Points every segment at its points and hands the trace over.
  SideTrace Take();

  SideTrace& trace() { return trace_; }

 private:
  int32_t CloseSegment();

  const frame::Settings& settings_;
  SideTrace trace_;
  BorderSegment building_{};
};

}  // namespace vorlanepic::analysis
