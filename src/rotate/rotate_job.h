// What the workers of one rotation share; all of it is only read, but for the target's pixels.
#pragma once

#include <algorithm>
#include <cstdint>

#include "frame/arithmetic.h"
#include "rotate/rotate_image.h"
#include "rotate/step_tables.h"

namespace vorlanepic::rotate {

struct RotateJob {
  const ImageRec& source;
  const ImageRec& target;  // outWidth x outHeight, every byte 0
  const RowSpans& region;
  const Turn& turn;
  const uint8_t* fill;
  StepTables steps;

  int32_t halfWidth() const { return (turn.outWidth - 1) >> 1; }
  int32_t halfHeight() const { return (turn.outHeight - 1) >> 1; }

  // The region's columns in source row y, top <= y <= bottom, kept inside the source.
  RowSpan SpanOf(int32_t y) const {
    const RowSpan& span = region.spans[static_cast<size_t>(y)];
    return {std::max(span.left, 0), std::min(span.right, source.width - 1)};
  }
};

// Where an output pixel lies in the source: its offset from the centre in hundredths of a pixel,
// and its base pixel, which is that offset cut toward the centre.
struct SourcePoint {
  int32_t offsetX;
  int32_t offsetY;
  int32_t baseX;
  int32_t baseY;
};

inline SourcePoint SourcePointOf(const RotateJob& job, int32_t x, int32_t y) {
  const int32_t dx = x - job.halfWidth();
  const int32_t dy = y - job.halfHeight();
  const int32_t offsetX = frame::WrapAdd(job.steps.Cos(dx), job.steps.Sin(dy));
  const int32_t offsetY = frame::WrapSub(job.steps.Cos(dy), job.steps.Sin(dx));
  return {offsetX, offsetY, frame::WrapAdd(job.turn.centerX, offsetX / 100),
          frame::WrapAdd(job.turn.centerY, offsetY / 100)};
}

// Whether the region holds the point's base pixel.
inline bool IsInRegion(const RotateJob& job, const SourcePoint& point) {
  if (point.baseY < job.region.top || point.baseY > job.region.bottom) return false;
  const RowSpan span = job.SpanOf(point.baseY);
  return point.baseX >= span.left && point.baseX <= span.right;
}

}  // namespace vorlanepic::rotate
