// Measures how far a mark sheet is turned from the long bar that is printed on it.
#pragma once

#include <cstdint>

#include "omr/bar_records.h"
#include "omr/grey_view.h"
#include "vorlanepic/vorlanepic.h"

namespace vorlanepic::omr {

// What the angle functions return.
enum : int32_t { BAR_FOUND = 0, BAR_NOT_FOUND = -1 };

// Finds the sheet, its reference bar and the mean direction of the bar's two edges.
//
//   threshold  grey level up to which a pixel is dark; the marker takes its low 8 bits
//   records    empty; receives what was found, as far as the search came
//   angle      receives radians, clockwise positive; set only where a bar is found
//
// Returns BAR_FOUND, or BAR_NOT_FOUND also for a null `angle` and when there is no memory.
int32_t MeasureBar(const GreyView& image, int32_t threshold, const BarLimits& limits,
                   BarRecords* records, double* angle);

// The same for a device-independent image, which must have its file header. BAR_NOT_FOUND for one
// that is not usable.
int32_t MeasureBarOfDib(const DibRec* image, int32_t threshold, const BarLimits& limits,
                        BarRecords* records, double* angle);

}  // namespace vorlanepic::omr
