// Where the sheet lies in a scanned grey image.
#pragma once

#include <cstdint>

#include "omr/grey_view.h"

namespace vorlanepic::omr {

// Rows top..bottom and columns left..right, inclusive. What the search does not find stays 0.
struct SheetArea {
  int32_t top;
  int32_t bottom;
  int32_t left;
  int32_t right;
};

// Finds the outermost lines that hold at least `count` pixels lighter than `threshold`, looking at
// every second row and column. The lowest row looked at is the last but one.
//
//   threshold  any value; pixels above it are light
//   count      pixels; from 0 down every line qualifies
//
// False unless top < bottom and left < right; `area` is filled in either way.
bool FindSheetArea(const GreyView& image, int32_t threshold, int32_t count, SheetArea* area);

}  // namespace vorlanepic::omr
