// Reads JPEG files.
#pragma once

#include "app/files/page.h"

namespace vorlane::files {

// Reads the picture in `bytes`, turned the right way up as its EXIF block asks. Throws DecodeError,
// with the decoder's words, when it is damaged, cut short or beyond the limits.
void ReadJpeg(Bytes bytes, const ReadLimits& limits, Page* page);

// The same for the data of a picture in a file of another format: what they say besides their
// pixels counts for nothing, the orientation too.
void ReadJpegPicture(Bytes bytes, const ReadLimits& limits, Page* page);

}  // namespace vorlane::files
