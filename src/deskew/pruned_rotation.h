// Pruned rotation: finds the page of an image by its four borders and turns it upright into an
// image of its own size.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "deskew/page_records.h"
#include "frame/settings.h"
#include "vorlanepic/vorlanepic.h"

namespace vorlanepic::deskew {

// What a run is told, beside its images.
struct PrunedRotationOptions {
  int32_t mode;          // INTERP_BICUBIC, INTERP_BILINEAR or INTERP_NEAREST
  int32_t threshold;     // 0: estimated from the image's outer columns, at least 80
  int32_t background;    // 0: the page is at or above the threshold; else within 9 levels of it
  int32_t cornerOption;  // every edge moves outwards by twice this many pixels
  const uint8_t* fill;   // the fill value of RotateImage
};

// Straightens the page of sources[0] and turns all sources alike.
//
//   settings  AngleOnlyFlag at 1: the run ends with the angle
//   sources   at least one image; all of one size and depth
//   angle     receives the turn in radians, 0 up to 2 pi; it may be written although a later step
//             fails
//   results   as many empty records; on success the caller owns the new images. Not looked at when
//             the run ends with the angle
//   page      receives what the stages found
//
// Returns STATUS_OK or the status of the first stage that failed: BORDER_NOT_FOUND,
// ANGLE_NOT_FOUND, EDGE_NOT_FOUND, BAD_ARGUMENT (also for a null `angle` or `fill`), OUT_OF_MEMORY
// or a code of the image library. `results` stay empty on failure.
int32_t RunPrunedRotation(const frame::Settings& settings, std::span<const ImageRec> sources,
                          const PrunedRotationOptions& options, double* angle,
                          std::span<ImageRec> results, PageRecords* page);

// RunPrunedRotation on arrays of `count` (at least 1) records whose content is not known to be
// good, with background 0 whatever the options say.
//
// Returns BAD_ARGUMENT for a null array; the image library's code for a source that it refuses;
// BAD_ARGUMENT for one that is not of the first one's size and depth; otherwise what the run
// returns.
int32_t RunCheckedPrunedRotation(const frame::Settings& settings, const ImageRec* sources,
                                 const PrunedRotationOptions& options, double* angle,
                                 ImageRec* results, size_t count, PageRecords* page);

}  // namespace vorlanepic::deskew
