// Pruned rotation: finds the page of an image by its four borders and turns it upright into an
// image of its own size.
#pragma once

#include <cstdint>
#include <span>

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
//   sources  at least one image; all of one size and depth
//   angle    receives the turn in radians, 0 up to 2 pi; it may be written although a later step
//            fails
//   results  as many empty records; on success the caller owns the new images. Not looked at when
//            the setting AngleOnlyFlag is 1
//
// Returns STATUS_OK or the status of the first stage that failed: BORDER_NOT_FOUND,
// ANGLE_NOT_FOUND, EDGE_NOT_FOUND, BAD_ARGUMENT (also for a null `angle` or `fill`), OUT_OF_MEMORY
// or a code of the image library. `results` stay empty on failure. What the stages found goes to
// settings.pageRecords.
int32_t RunPrunedRotation(std::span<const ImageRec> sources, const PrunedRotationOptions& options,
                          double* angle, std::span<ImageRec> results);

// RunPrunedRotation on arrays of `count` (at least 1) records whose content is not known to be
// good, with background 0 whatever the options say.
//
// Returns BAD_ARGUMENT for a null array; the image library's code when it refuses the first source;
// BAD_ARGUMENT when a later source is not usable or not of the first one's size and depth;
// otherwise what the run returns.
int32_t RunCheckedPrunedRotation(const ImageRec* sources, const PrunedRotationOptions& options,
                                 double* angle, ImageRec* results, int32_t count);

}  // namespace vorlanepic::deskew
