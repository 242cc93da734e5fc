// Turns and cuts rectangles of an image.
#pragma once

#include <cstdint>

#include "vorlanepic/vorlanepic.h"

namespace vorlanepic::deskew {

// A rectangle of an image: columns left..left + width - 1, rows top..top + height - 1, in pixels.
struct ImageRegion {
  int32_t left;
  int32_t top;
  int32_t width;
  int32_t height;
};

// Turns `region` of `src` clockwise about its centre into a new image in `dst`, which has the size
// of the turned rectangle's bounding box. Pixels from outside the region are `fill`.
//
//   dst            empty; on success the caller owns the new image
//   fill           3 bytes at 24 bits, else 1, as RotateImage takes it
//   region         its rows lie inside `src`, two at least; columns beyond the right end are cut
//   interpolation  INTERP_BICUBIC, INTERP_BILINEAR or INTERP_NEAREST
//
// Returns STATUS_OK; BAD_ARGUMENT for a null pointer, another interpolation or another region;
// OUT_OF_MEMORY; or the image library's code. `dst` stays empty on failure, and with STATUS_OK for
// a `src` of another depth than 1, 8 and 24.
int32_t RotateImageRegion(const ImageRec* src, ImageRec* dst, const uint8_t* fill,
                          const ImageRegion& region, double angleDegrees, int32_t interpolation);

// Cuts `region` of `src` out into a new image in `dst`.
//
//   src  1, 8 or 24 bits per pixel
//   dst  empty; on success the caller owns the new image
//
// Returns STATUS_OK; BAD_ARGUMENT for a null pointer, another depth or a region that leaves `src`;
// or the image library's code. `dst` stays empty on failure.
int32_t CopyImageRegion(const ImageRec* src, ImageRec* dst, const ImageRegion& region);

}  // namespace vorlanepic::deskew
