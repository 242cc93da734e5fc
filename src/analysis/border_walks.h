// The walks from the image's frame to the border of the page. Each looks for the first run of
// `run` document pixels, 1..10, on its way; `band` lies inside the image.
#pragma once

#include <cstdint>
#include <span>

#include "analysis/border_records.h"
#include "vorlanepic/vorlanepic.h"

namespace vorlanepic::analysis {

// The longest run that can be asked for.
inline constexpr int32_t kLongestRun = 10;

// What a walk that met no border gives. (-1 is a column that the 1-bit walk from the right can
// give.)
inline constexpr int32_t kNoBorder = INT32_MIN;

// Column of the border in a row as seen from the left: one pixel past the first of the first run
// that ends before column band.right.
//
// At 1 bit the walk takes `run` steps at a time: over a zero byte a step goes 8 pixels, from
// whichever bit it starts, otherwise one pixel. The border is where all steps met set bits, up to
// column band.right; its column is `run` pixels past the first of them, which may be the first one
// outside the image.
template <typename Pixel>
int32_t WalkFromLeft(const uint8_t* row, const frame::PixelRect& band, GreyBand levels,
                     int32_t run);

// The mirror image: one pixel before the first met of a run that ends behind column band.left; at 1
// bit `run` pixels before it, up to column -1.
template <typename Pixel>
int32_t WalkFromRight(const uint8_t* row, const frame::PixelRect& band, GreyBand levels,
                      int32_t run);

// Columns right, right - 2, ... down to `left`, inside the image.
struct ColumnRange {
  int32_t left;
  int32_t right;

  size_t count() const {
    return left > right ? 0 : static_cast<size_t>((int64_t{right} - left) / 2 + 1);
  }
};

// Rows of the border in a ColumnRange, entry i in column right - 2 * i, or kNoBorder. From the top:
// the first row of the first run that ends above row band.bottom. From the bottom the walk goes two
// rows at a time: the first row met of a run that ends below row band.top.
struct ColumnBorders {
  std::span<int32_t> top;
  std::span<int32_t> bottom;
};

// Walks all columns from both ends. Returns STATUS_OK or OUT_OF_MEMORY.
template <typename Pixel>
int32_t WalkColumns(const ImageRec& image, const frame::PixelRect& band, GreyBand levels,
                    int32_t run, ColumnRange columns, ColumnBorders borders);

}  // namespace vorlanepic::analysis
