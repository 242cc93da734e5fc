// Fits straight lines to the two long edges of a sampled bar.
#pragma once

#include <cstdint>
#include <span>

namespace vorlanepic::omr {

// One cross-section of a bar. Wide bar: `position` is a column, `first` and `last` the topmost and
// bottommost bar rows in it; tall bar: `position` is a row, the others the leftmost and rightmost
// bar columns. Pixels of the image; consecutive samples have consecutive positions.
struct EdgeSample {
  int32_t first;
  int32_t last;
  int32_t position;
};

// The line y = slope * x + intercept, in pixels; y grows downwards. A vertical line has an infinite
// slope.
struct BarLine {
  float slope;
  float intercept;
  float weight;  // of y: 1
};

struct BarPoint {
  int32_t x;
  int32_t y;
};

// The two edges of a bar: its top and bottom, or its left and right.
struct BarLines {
  BarLine first;
  BarLine second;
};

// Fits both edges of a bar of 2 .. 4999 samples. The usual step from one sample to the next is
// found, points whose step is another are left out, the rest is cut into straight pieces, and the
// longest group of pieces on one line is fitted by least squares.
//
// False for another number of samples, for an edge without a usual step, and when there is no
// memory.
bool FitWideBarEdges(std::span<const EdgeSample> samples, BarLines* lines);
bool FitTallBarEdges(std::span<const EdgeSample> samples, BarLines* lines);

// The most frequent of at least one value, and of equally frequent ones the smallest. Sorts
// `values`.
int32_t ModeOf(std::span<int32_t> values);

}  // namespace vorlanepic::omr
