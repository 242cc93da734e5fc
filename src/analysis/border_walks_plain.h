// The walks from the image's frame to the border of the page, pixel by pixel: what the fast walks
// are compared with.
#pragma once

#include <cstdint>

#include "analysis/border_records.h"
#include "analysis/border_walks.h"
#include "analysis/pixel_access.h"
#include "vorlanepic/vorlanepic.h"

namespace vorlanepic {

// From the left: the first run of document pixels that ends before column `right`. The point is one
// pixel past the run's first.
template <typename Pixel>
struct PlainRowWalk {
  static int32_t FromLeft(const uint8_t* row, const ScanBand& band, GreyBand levels, int32_t run) {
    for (int32_t x = band.left; x < band.right; ++x) {
      int32_t i = 0;
      while (i < run && x + i < band.right && Pixel::IsDocument(row, x + i, levels)) ++i;
      if (i == run) return x + 1;
    }
    return kNoBorder;
  }

  static int32_t FromRight(const uint8_t* row, const ScanBand& band, GreyBand levels, int32_t run) {
    for (int32_t x = band.right; x > band.left; --x) {
      int32_t i = 0;
      while (i < run && x - i > band.left && Pixel::IsDocument(row, x - i, levels)) ++i;
      if (i == run) return x - 1;
    }
    return kNoBorder;
  }
};

// At 1 bit the walk takes `run` steps at a time: over a zero byte a step goes 8 pixels, from
// whichever bit it starts, otherwise one pixel. A border is where all steps met set bits; the point
// is `run` pixels past the first of them, which may be the first column outside the image.
template <>
struct PlainRowWalk<Bit1> {
  static int32_t FromLeft(const uint8_t* row, const ScanBand& band, GreyBand, int32_t run) {
    int64_t x = band.left;
    while (x <= band.right) {
      int32_t hits = 0;
      for (int32_t i = 0; i < run && x <= band.right; ++i) {
        const auto cursor = static_cast<int32_t>(x);
        hits += Bit1::Level(row, cursor) != 0;
        x += row[cursor >> 3] == 0 ? 8 : 1;
      }
      if (hits == run) return static_cast<int32_t>(x);
    }
    return kNoBorder;
  }

  static int32_t FromRight(const uint8_t* row, const ScanBand& band, GreyBand, int32_t run) {
    int32_t x = band.right;
    while (x >= band.left) {
      int32_t hits = 0;
      for (int32_t i = 0; i < run && x >= band.left; ++i) {
        hits += Bit1::Level(row, x) != 0;
        x -= row[x >> 3] == 0 ? 8 : 1;
      }
      if (hits == run) return x;
    }
    return kNoBorder;
  }
};

// Down from the first row: the run's first row, y of the first run of document pixels in column x
// that ends above row `bottom`.
template <typename Pixel>
int32_t PlainWalkFromTop(const ImageRec& image, int32_t x, const ScanBand& band, GreyBand levels,
                         int32_t run) {
  for (int32_t y = band.top; y < band.bottom; ++y) {
    int32_t i = 0;
    while (i < run && y + i < band.bottom && Pixel::IsDocument(image.rows[y + i], x, levels)) ++i;
    if (i == run) return y;
  }
  return kNoBorder;
}

// Up from the last row, in steps of two rows: the run's first row as met, of a run that ends below
// row `top`.
template <typename Pixel>
int32_t PlainWalkFromBottom(const ImageRec& image, int32_t x, const ScanBand& band, GreyBand levels,
                            int32_t run) {
  for (int32_t y = band.bottom; y > band.top; y -= 2) {
    int32_t i = 0;
    while (i < run && y - i > band.top && Pixel::IsDocument(image.rows[y - i], x, levels)) ++i;
    if (i == run) return y;
  }
  return kNoBorder;
}

// WalkColumns of border_walks.h.
template <typename Pixel>
void PlainWalkColumns(const ImageRec& image, const ScanBand& band, GreyBand levels, int32_t run,
                      ColumnRange columns, ColumnBorders borders) {
  for (int32_t i = 0, x = columns.right; x >= columns.left; ++i, x -= 2) {
    borders.top[static_cast<size_t>(i)] = PlainWalkFromTop<Pixel>(image, x, band, levels, run);
    borders.bottom[static_cast<size_t>(i)] =
        PlainWalkFromBottom<Pixel>(image, x, band, levels, run);
  }
}

}  // namespace vorlanepic
