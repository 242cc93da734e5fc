// Where the sheet lies in a scanned grey image.
#pragma once

#include <cstdint>

#include "frame/geometry.h"
#include "omr/grey_view.h"

namespace vorlanepic::omr {

// Finds the outermost lines that hold at least `count` pixels lighter than `threshold`, looking at
// every second row and column. The lowest row looked at is the last but one.
//
//   threshold  any value; pixels above it are light
//   count      pixels; from 0 down every line qualifies
//
// False unless top < bottom and left < right; `area` is filled in either way, with 0 for what the
// search does not find.
bool FindSheetArea(const GreyView& image, int32_t threshold, int32_t count, frame::PixelRect* area);

}  // namespace vorlanepic::omr
