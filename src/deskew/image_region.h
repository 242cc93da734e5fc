// Turns and cuts rectangles of an image.
#pragma once

#include <cstdint>

#include "frame/geometry.h"
#include "vorlanepic/vorlanepic.h"

namespace vorlanepic::deskew {

// Turns `region` of `src` clockwise about its centre into a new image in `dst`, which has the size
// of the turned rectangle's bounding box. Pixels from outside the region are `fill`.
//
//   dst            empty; on success the caller owns the new image
//   fill           3 bytes at 24 bits, else 1, as RotateImage takes it
//   region         its rows lie inside `src`, two at least; columns beyond the right end are cut.
//                  One whose right side lies left of its left side covers nothing: its size goes
//                  into the bounding box as it is, and the result, if it has one, is all `fill`
//   interpolation  INTERP_BICUBIC, INTERP_BILINEAR or INTERP_NEAREST
//
// Returns STATUS_OK; BAD_ARGUMENT for a null pointer, another interpolation, another region or one
// whose turned size is below 1;
// OUT_OF_MEMORY; or the image library's code. `dst` stays empty on failure, and with STATUS_OK for
// a `src` of another depth than 1, 8 and 24.
int32_t RotateImageRegion(const ImageRec* src, ImageRec* dst, const uint8_t* fill,
                          const frame::PixelRect& region, double angleDegrees,
                          int32_t interpolation);

// Cuts `region` of `src` out into a new image in `dst`.
//
//   src  1, 8 or 24 bits per pixel
//   dst  empty; on success the caller owns the new image
//
// Returns STATUS_OK; BAD_ARGUMENT for a null pointer, another depth or a region that leaves `src`;
// or the image library's code. `dst` stays empty on failure.
int32_t CopyImageRegion(const ImageRec* src, ImageRec* dst, const frame::PixelRect& region);

}  // namespace vorlanepic::deskew
