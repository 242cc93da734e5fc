// What the runs of a block come to.
#pragma once

#include <algorithm>
#include <cstdint>

#include "omr/row_runs.h"
#include "omr/value_range.h"

namespace vorlanepic::omr {

struct BlockTotal {
  int64_t area = 0;
  int64_t pointCapacity = 0;  // what a point list that grows run by run reserves
  uint32_t sumX = 0;          // modulo 2^32, as the fields are that the sums end in
  uint32_t sumY = 0;
  int32_t left = INT32_MAX;  // bounds, inclusive
  int32_t right = 0;
  int32_t top = INT32_MAX;
  int32_t bottom = 0;
  ValueRange values;
};

// What a point list of `capacity` that holds `count` reserves to take `more` points of a run.
inline int64_t GrownPointCapacity(int64_t capacity, int64_t count, int64_t more) {
  constexpr int64_t kLeast = 512;
  if (count + more < capacity) return capacity;
  return std::min<int64_t>(std::max((capacity + more) * 2, kLeast), INT32_MAX);
}

// Adds a run in row `y`; rows only grow. The values are left to the caller.
inline void AddRun(const PixelRun& run, int32_t y, BlockTotal* total) {
  const int64_t length = Length(run);
  total->pointCapacity = GrownPointCapacity(total->pointCapacity, total->area, length);
  total->area += length;
  total->sumX += static_cast<uint32_t>((run.start + (run.end - int64_t{1})) * length / 2);
  total->sumY += static_cast<uint32_t>(length * y);
  total->left = std::min(total->left, run.start);
  total->right = std::max(total->right, run.end - 1);
  total->bottom = y;
}

// Reserves for the points of a merged block as well.
inline void ReserveMerged(int64_t area, BlockTotal* total) {
  constexpr int64_t kReserve = 1024;  // beyond the points
  if (total->area + area >= total->pointCapacity) {
    total->pointCapacity = total->area + area + kReserve;
  }
}

// Adds all of another total but what it reserves.
inline void Fold(const BlockTotal& other, BlockTotal* total) {
  total->area += other.area;
  total->sumX += other.sumX;
  total->sumY += other.sumY;
  total->left = std::min(total->left, other.left);
  total->right = std::max(total->right, other.right);
  total->top = std::min(total->top, other.top);
  total->bottom = std::max(total->bottom, other.bottom);
  Widen(&total->values, other.values);
}

}  // namespace vorlanepic::omr
