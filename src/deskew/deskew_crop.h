// Method 2: takes the skew from a vote among the page's borders, turns the content upright and cuts
// it out.
#pragma once

#include <cstddef>
#include <cstdint>

#include "deskew/page_records.h"
#include "frame/settings.h"
#include "vorlanepic/vorlanepic.h"

namespace vorlanepic::deskew {

// What a run is told, beside its images.
struct DeskewCropOptions {
  int32_t interpolation;  // INTERP_BICUBIC, INTERP_BILINEAR or INTERP_NEAREST
  int32_t threshold;      // its low 8 bits separate background from page; 0: estimated
  const uint8_t* fill;    // the fill value of RotateImage
};

// Measures images[0] and turns and cuts all images of the set alike.
//
//   settings   AngleOnlyFlag at 1: the run ends with the angle
//   images     `count` of them, at least 1
//   angleOut   receives the turn in degrees, 0.0 up to 360.0
//   outImages  empty records; the caller owns the images that were made, also those made before a
//              failure. None is made when the run ends with the angle
//   page       receives what the stages found
//
// Returns STATUS_OK; BORDER_NOT_FOUND; ANGLE_NOT_FOUND when no border gives an angle; BAD_ARGUMENT,
// also for a null array or `angleOut`; OUT_OF_MEMORY; or a code of the image library, also when it
// cannot release the last turned image.
int32_t DeskewCropPipeline(const frame::Settings& settings, const ImageRec* images, size_t count,
                           const DeskewCropOptions& options, double* angleOut, ImageRec* outImages,
                           PageRecords* page);

}  // namespace vorlanepic::deskew
