// The grey level that separates a page from the scanner background.
#pragma once

#include <cstdint>

#include "vorlanepic/vorlanepic.h"

namespace vorlanepic::analysis {

// Estimates the background from the two outer columns on each side of `image` (1, 8 or 24 bits):
// the mean of their grey levels, rounded half up, in *threshold, 0..255.
//
// Returns STATUS_OK; BAD_ARGUMENT for another depth or an image narrower than 2 pixels; or the
// image library's code.
int32_t EstimateThreshold(const ImageRec& image, uint8_t* threshold);

}  // namespace vorlanepic::analysis
