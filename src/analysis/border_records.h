// Records of the border analysis: what the scans find and the edge lines are fitted to.
#pragma once

#include <cstdint>
#include <span>

#include "frame/geometry.h"
#include "frame/scratch.h"

namespace vorlanepic::analysis {

// A run of neighbouring border points.
struct BorderSegment {
  int32_t count;                   // points
  const frame::PixelPoint* first;  // its first point, in the point array of the trace it came from
  bool used;                       // the edge selection keeps it
  int32_t meanX;  // mean of the points, truncated; their sum while the segment grows
  int32_t meanY;
};

// Segments in the order along the border.
struct SegmentList {
  int32_t segmentCount = 0;
  int32_t pointTotal = 0;  // points of all segments, kept up by whoever fits a line to points
  frame::ScratchArray<BorderSegment> segments;  // room for segments.size(), segmentCount in use

  std::span<BorderSegment> view() {
    return segments.span().first(static_cast<size_t>(segmentCount));
  }
  std::span<const BorderSegment> view() const {
    return segments.span().first(static_cast<size_t>(segmentCount));
  }
};

// One side of the border. The points are exactly those of the stored segments, segment after
// segment, in the order found.
struct SideTrace {
  int32_t pointCount = 0;
  frame::ScratchArray<frame::PixelPoint> points;  // room for points.size(), pointCount in use
  SegmentList list;
};

// The four traced sides.
struct BorderTraces {
  SideTrace left;
  SideTrace right;
  SideTrace top;
  SideTrace bottom;
};

// The first and the last segment of a side's list that hold its extreme point.
struct ExtremeSegments {
  int32_t first;
  int32_t last;
};

// Extreme border points, each picked from a full segment. A side without a full segment leaves the
// last segment as the caller set it.
struct ExtremePoints {
  frame::PixelPoint leftmost{};
  frame::PixelPoint rightmost{};
  frame::PixelPoint topmost{};
  frame::PixelPoint bottommost{};
  ExtremeSegments leftSegments{};
  ExtremeSegments rightSegments{};
  ExtremeSegments topSegments{};
  ExtremeSegments bottomSegments{};
};

// Grey levels low..high that count as document, both inclusive.
struct GreyBand {
  uint8_t low;
  uint8_t high;
};

// What a BorderLine is.
enum class LineKind : int32_t {
  kUnset,
  kHorizontal,  // y = intercept, angle 0
  kVertical,    // x = intercept, angle 90
  kGeneral,     // y = slope * x + intercept
  kNotFitted,
};

// A straight border line.
struct BorderLine {
  double intercept = 0.0;
  double slope = 0.0;
  double angle = 0.0;  // degrees against the x axis
  LineKind kind = LineKind::kUnset;
  int32_t midX = 0;  // the point through which the line was fitted
  int32_t midY = 0;
};

enum class Side : int32_t { kLeft, kRight, kTop, kBottom };

// Which sides the four edges are, in their order.
enum class Arrangement : int32_t {
  kUndecided = 0,
  kTopFirst = 1,   // top, left, bottom, right
  kLeftFirst = 2,  // left, bottom, right, top
};

// What of a side's trace an edge is taken from.
enum class EdgeSource : int32_t {
  kWholeSides = 0,      // the tested sides are straight
  kBeyondExtremes = 1,  // the part beyond the side's extreme point
};

// How the edges came from the traces.
struct EdgeOrigin {
  EdgeSource source = EdgeSource::kBeyondExtremes;
  // Decided unless whole sides were taken by method 1, which puts the top first.
  Arrangement arrangement = Arrangement::kUndecided;
};

// An edge's place in the order around the document.
enum class EdgeCode : int32_t { kE1 = 1, kE2 = 2, kE3 = 3, kE4 = 4 };

// One edge of the document: its line and copies of the segments that it keeps.
struct EdgeLine {
  Side side = Side::kLeft;  // whose trace it was taken from
  BorderLine line;
  SegmentList list;
};

// The four edges, one after the other around the document; each says which side it
// is.
struct DocumentEdges {
  EdgeLine e1;
  EdgeLine e2;
  EdgeLine e3;
  EdgeLine e4;
};

}  // namespace vorlanepic::analysis
