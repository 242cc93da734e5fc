// Page images for decoders to fill.
#pragma once

#include <cstdint>

#include "app/files/page.h"

namespace vorlane::files {

// Throws DecodeError when a page of this size is beyond the limits.
void CheckSize(uint64_t width, uint64_t height, const ReadLimits& limits);

// Makes the page's image. Throws DecodeError when it would pass 2^31 - 1 bytes or there is no
// memory.
void MakeImage(int32_t width, int32_t height, int32_t bitsPerPixel, Page* page);

// The image turned the right way up, or one without pixels where it is so already. Throws
// DecodeError when there is no memory.
PagePixels Turned(const ImageRec& image, uint32_t orientation);

// Turns the page the right way up: `orientation` is 1 to 8 as TIFF and EXIF number them, 1 for a
// page that is. Others leave it as it is. The resolution turns along.
void ApplyOrientation(uint32_t orientation, Page* page);

// Turns the page by quarters: `degrees` is 0, 90, 180 or 270, clockwise. The resolution turns
// along.
void TurnByQuarters(int32_t degrees, Page* page);

}  // namespace vorlane::files
