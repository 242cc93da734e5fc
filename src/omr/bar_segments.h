// Picks the main straight part of a bar's edge.
#pragma once

#include <cstdint>
#include <span>

#include "omr/edge_fitting.h"

namespace vorlanepic::omr {

// The axes of an edge: the coordinate that grows from point to point, and the one across the bar.
struct EdgeAxes {
  int32_t BarPoint::*along;
  int32_t BarPoint::*across;
};

inline constexpr EdgeAxes kWideBar{&BarPoint::x, &BarPoint::y};
inline constexpr EdgeAxes kTallBar{&BarPoint::y, &BarPoint::x};

// Cuts `points` wherever the slope from one to the next leaves lo..hi, groups the pieces that lie
// on one line, and moves the points of the longest group to the front, in their order.
//
//   points  at least one; their `along` coordinate strictly increases
//   lo, hi  steps against the direction of `across`, both inclusive
//   kept    receives how many points were kept
//
// False when there is no memory.
bool KeepMainSegments(std::span<BarPoint> points, const EdgeAxes& axes, int32_t lo, int32_t hi,
                      size_t* kept);

}  // namespace vorlanepic::omr
