// The walks of border_walks.h pixel by pixel: what the fast ones are compared with.
#pragma once

#include <cstdint>

#include "analysis/border_records.h"
#include "analysis/border_walks.h"
#include "analysis/pixel_access.h"
#include "vorlanepic/vorlanepic.h"

namespace vorlanepic::analysis {

template <typename Pixel>
int32_t PlainWalkFromLeft(const uint8_t* row, const frame::PixelRect& band, GreyBand levels,
                          int32_t run) {
  for (int32_t x = band.left; x < band.right; ++x) {
    int32_t i = 0;
    while (i < run && x + i < band.right && Pixel::IsDocument(row, x + i, levels)) ++i;
    if (i == run) return x + 1;
  }
  return kNoBorder;
}

template <typename Pixel>
int32_t PlainWalkFromRight(const uint8_t* row, const frame::PixelRect& band, GreyBand levels,
                           int32_t run) {
  for (int32_t x = band.right; x > band.left; --x) {
    int32_t i = 0;
    while (i < run && x - i > band.left && Pixel::IsDocument(row, x - i, levels)) ++i;
    if (i == run) return x - 1;
  }
  return kNoBorder;
}

template <>
inline int32_t PlainWalkFromLeft<Bit1>(const uint8_t* row, const frame::PixelRect& band, GreyBand,
                                       int32_t run) {
  for (int32_t x = band.left; x <= band.right;) {
    int32_t hits = 0;
    for (int32_t i = 0; i < run && x <= band.right; ++i) {
      hits += Bit1::Level(row, x) != 0;
      x += row[x >> 3] == 0 ? 8 : 1;
    }
    if (hits == run) return x;
  }
  return kNoBorder;
}

template <>
inline int32_t PlainWalkFromRight<Bit1>(const uint8_t* row, const frame::PixelRect& band, GreyBand,
                                        int32_t run) {
  for (int32_t x = band.right; x >= band.left;) {
    int32_t hits = 0;
    for (int32_t i = 0; i < run && x >= band.left; ++i) {
      hits += Bit1::Level(row, x) != 0;
      x -= row[x >> 3] == 0 ? 8 : 1;
    }
    if (hits == run) return x;
  }
  return kNoBorder;
}

template <typename Pixel>
int32_t PlainWalkFromTop(const ImageRec& image, int32_t x, const frame::PixelRect& band,
                         GreyBand levels, int32_t run) {
  for (int32_t y = band.top; y < band.bottom; ++y) {
    int32_t i = 0;
    while (i < run && y + i < band.bottom && Pixel::IsDocument(image.rows[y + i], x, levels)) ++i;
    if (i == run) return y;
  }
  return kNoBorder;
}

template <typename Pixel>
int32_t PlainWalkFromBottom(const ImageRec& image, int32_t x, const frame::PixelRect& band,
                            GreyBand levels, int32_t run) {
  for (int32_t y = band.bottom; y > band.top; y -= 2) {
    int32_t i = 0;
    while (i < run && y - i > band.top && Pixel::IsDocument(image.rows[y - i], x, levels)) ++i;
    if (i == run) return y;
  }
  return kNoBorder;
}

template <typename Pixel>
void PlainWalkColumns(const ImageRec& image, const frame::PixelRect& band, GreyBand levels,
                      int32_t run, ColumnRange columns, ColumnBorders borders) {
  for (int32_t i = 0, x = columns.right; x >= columns.left; ++i, x -= 2) {
    borders.top[static_cast<size_t>(i)] = PlainWalkFromTop<Pixel>(image, x, band, levels, run);
    borders.bottom[static_cast<size_t>(i)] =
        PlainWalkFromBottom<Pixel>(image, x, band, levels, run);
  }
}

}  // namespace vorlanepic::analysis
