// Finds the rectangle of an image that holds the page's content.
#pragma once

#include <cstdint>

#include "frame/geometry.h"
#include "vorlanepic/vorlanepic.h"

namespace vorlanepic::deskew {

// Which bounds a search sets; the others are given.
inline constexpr uint16_t kSearchColumns = 0;
inline constexpr uint16_t kSearchRowsAndColumns = 1;

// What makes content. A pixel is bright when its grey level (at 24 bits its luminance) is above
// `threshold`, at 1 bit when it is set.
struct ContentSearch {
  uint32_t searchLimit;  // content begins where more than this many successive lines are bright
  uint32_t pixelCount;   // a line is bright when more than this many of its pixels are; more than
                         // the width or the height is replaced by three tenths of it
  uint8_t threshold;
  uint16_t searchMode;      // kSearchColumns or kSearchRowsAndColumns
  bool takesShare = false;  // a line is bright from three tenths of its length on (four tenths in a
                            // row of a 1-bit image) instead
};

// Narrows *bounds to the first and last bright rows and columns. Probes every eighth line until it
// comes to a run of bright ones, goes back 11 lines beyond the run and takes the first bright line
// from there; without a run, the first bright line of all; without a bright line, the image's edge.
//
//   image   1, 8 or 24 bits per pixel
//   bounds  with kSearchColumns, rows top..bottom are given. Columns are looked at in these rows
//           (at 1 bit without row bottom)
//
// Returns STATUS_OK; BAD_ARGUMENT for another depth or mode, or given rows outside the image.
int32_t FindContentBounds(const ImageRec& image, const ContentSearch& search,
                          frame::PixelRect* bounds);

}  // namespace vorlanepic::deskew
