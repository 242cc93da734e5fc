// The rotation engine: turns a region of a source image about a point into an output of free size.
#pragma once

#include <cstdint>

#include "rotate/row_spans.h"
#include "vorlanepic/vorlanepic.h"

namespace vorlanepic::rotate {

// Output geometry. With halfWidth = (outWidth - 1) >> 1 and halfHeight = (outHeight - 1) >> 1,
// output pixel (halfWidth, halfHeight) samples source pixel (centerX, centerY), and every other
// pixel samples the source at its offset from there, turned by `angle`. A positive angle turns the
// content clockwise as seen.
struct Turn {
  double angle;  // radians
  int32_t centerX;
  int32_t centerY;
  int32_t outWidth;
  int32_t outHeight;
  int32_t interpolation;  // INTERP_BICUBIC, INTERP_BILINEAR or INTERP_NEAREST
  // 0..3 quarter turns clockwise on top of the angle. Exact: an output pixel at (dx, dy) from the
  // centre takes the value that without them stands at (dy, -dx), (-dx, -dy) or (-dy, dx).
  int32_t quarterTurns = 0;
};

// Resamples the region `spans` of `source` into a new image in `target`, on two threads.
//
//   source  1, 8 or 24 bits per pixel
//   target  empty; on success the caller owns the new image, released with Imgbuf_Destory
//   fill    value of pixels outside the region: 3 bytes at 24 bits, else 1 (at 1 bit the byte is
//           written eight pixels at a time). Row padding of 1- and 8-bit outputs holds it too
//
// Returns STATUS_OK; BAD_ARGUMENT for a null pointer, a size below 1, a centre outside `source`,
// another interpolation, or a region that leaves the rows of `source` or has a single row;
// OUT_OF_MEMORY for the step tables; or the image library's code. `target` stays empty on failure,
// and with STATUS_OK when `source` has another depth.
int32_t RotateImage(const ImageRec* source, ImageRec* target, const RowSpans* spans,
                    const Turn& turn, const uint8_t* fill);

}  // namespace vorlanepic::rotate
