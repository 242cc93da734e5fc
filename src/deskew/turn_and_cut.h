// Turns the content of a set of images upright and cuts it out.
#pragma once

#include <cstdint>
#include <span>

#include "deskew/content_bounds.h"
#include "deskew/page_records.h"
#include "vorlanepic/vorlanepic.h"

namespace vorlanepic::deskew {

// How a set is turned. All images get the geometry of the first.
struct TurnAndCut {
  frame::PixelRect content;  // in the first image
  double degrees;            // clockwise
  int32_t interpolation;     // INTERP_BICUBIC, INTERP_BILINEAR or INTERP_NEAREST
  const uint8_t* fill;       // the fill value of RotateImage
  uint8_t threshold;         // grey level above which pixels of the turned image are content
};

// Turns the content of every source into an image of its own, finds the content of the first one
// again, with SearchLimitNum, CropPixelNum and CropPixelFlag, and cuts it out of all.
//
//   sources  not known to be good
//   results  as many empty records; those filled before a failure stay filled
//   page     receives size and content of the turned image and the stage
//   release  receives the image library's status for the last turned image that was released
//
// Returns STATUS_OK or the status of the first step that failed.
int32_t TurnAndCutSet(const frame::Settings& settings, std::span<const ImageRec> sources,
                      const TurnAndCut& how, std::span<ImageRec> results, PageRecords* page,
                      int32_t* release);

}  // namespace vorlanepic::deskew
