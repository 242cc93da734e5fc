// Line-guided deskew: turns forms by their printed bar and cuts them to their content.
#pragma once

#include <cstdint>

#include "deskew/page_records.h"
#include "frame/settings.h"
#include "omr/bar_records.h"
#include "vorlanepic/vorlanepic.h"

namespace vorlanepic::deskew {

// What a run is told, beside its images.
struct LineDeskewOptions {
  int32_t interpolation;  // INTERP_BICUBIC, INTERP_BILINEAR or INTERP_NEAREST
  int32_t threshold;      // grey level up to which a pixel belongs to the bar; its low 8 bits
                          // separate content from background
  const uint8_t* fill;    // the fill value of RotateImage
};

// Measures the bar of inImages[0] and turns and cuts all images of the set alike.
//
//   settings   AngleOnlyFlag at 1: the run ends with the angle
//   inImages   `imageNum` of them, the first known to be good
//   limits     of the bar in pixels at 200 dots per inch; scaled to the image's resolution
//   angleOut   receives the turn in degrees, clockwise
//   outImages  as many records; the caller owns the images that were made. None is made when the
//              run ends with the angle
//   page, bar  receive what the stages found
//
// Returns STATUS_OK; -1 when no bar is found; BAD_ARGUMENT; OUT_OF_MEMORY; or a code of the image
// library.
int32_t RunLineDeskew(const frame::Settings& settings, const DibRec* inImages, int32_t imageNum,
                      const omr::BarLimits& limits, const LineDeskewOptions& options,
                      double* angleOut, DibRec* outImages, PageRecords* page, omr::BarRecords* bar);

}  // namespace vorlanepic::deskew
