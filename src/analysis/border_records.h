// Records of the border analysis: what the scans find and the edge lines are fitted to.
#pragma once

#include <cstdint>
#include <span>

#include "frame/scratch.h"

namespace vorlanepic::analysis {

// Columns left..right and rows top..bottom that are searched for the border, all inclusive, in
// pixels.
struct ScanBand {
  int32_t left;
  int32_t right;
  int32_t top;
  int32_t bottom;
};

// A pixel position. A 1-bit walk may put its point one run past the image: x up to the width.
struct EdgePoint {
  int32_t x;
  int32_t y;
};

// A run of neighbouring border points.
struct BorderSegment {
  int32_t count;           // points
  const EdgePoint* first;  // its first point, in the point array of the trace it came from
  int32_t used;            // 1: the edge selection keeps it
  int32_t meanX;           // mean of the points, truncated; their sum while the segment grows
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
  frame::ScratchArray<EdgePoint> points;  // room for points.size(), pointCount in use
  SegmentList list;
};

// The four traced sides.
struct BorderTraces {
  SideTrace left;
  SideTrace right;
  SideTrace top;
  SideTrace bottom;
};

// Extreme border points, each picked from a full segment.
struct ExtremePoints {
  EdgePoint leftmost;
  EdgePoint rightmost;
  EdgePoint topmost;
  EdgePoint bottommost;
};

// Grey levels low..high that count as document, both inclusive.
struct GreyBand {
  uint8_t low;
  uint8_t high;
};

// What a BorderLine is.
enum LineKind : int32_t {
  kLineUnset = 0,
  kLineHorizontal = 1,  // y = intercept, angle 0
  kLineVertical = 2,    // x = intercept, angle 90
  kLineGeneral = 3,     // y = slope * x + intercept
  kLineNotFitted = 4,
};

// A straight border line.
struct BorderLine {
  double intercept = 0.0;
  double slope = 0.0;
  double angle = 0.0;  // degrees against the x axis
  int32_t kind = kLineUnset;
  int32_t midX = 0;  // the point through which the line was fitted
  int32_t midY = 0;
};

// One edge of the document: its line and copies of the segments that it keeps.
struct EdgeLine {
  BorderLine line;
  SegmentList list;
};

// The four edges. Code 1 is followed by 2, 3 and 4 around the document. In arrangement 1 they are
// the top, left, bottom and right edge; in arrangement 2 the left, bottom, right and top edge.
struct DocumentEdges {
  EdgeLine e1;
  EdgeLine e2;
  EdgeLine e3;
  EdgeLine e4;
};

}  // namespace vorlanepic::analysis
