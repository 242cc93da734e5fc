// The walks from the image's frame to the border of the page. Each looks for the first run of
// `run` document pixels in a row, 1..10.
#pragma once

#include <cstdint>
#include <span>

#include "analysis/border_records.h"
#include "vorlanepic/vorlanepic.h"

namespace vorlanepic {

// What a walk that met no border gives. (-1 is a column that the 1-bit walk from the right can
// give.)
inline constexpr int32_t kNoBorder = INT32_MIN;

// Columns right, right - 2, ... down to `left`.
struct ColumnRange {
  int32_t left;
  int32_t right;

  size_t count() const {
    return left > right ? 0 : static_cast<size_t>((int64_t{right} - left) / 2 + 1);
  }
};

// Rows in which the walks of a ColumnRange met the border, entry i for column right - 2 * i, or
// kNoBorder.
struct ColumnBorders {
  std::span<int32_t> top;
  std::span<int32_t> bottom;
};

}  // namespace vorlanepic
