// A colour copy of a page at the size of a screen.
#pragma once

#include <cstdint>

#include "app/files/pix_owner.h"
#include "vorlanepic/imgbuf.h"

namespace vorlane::overlay {

// Copies a page image of 1, 8 or 24 bits into a picture of 32-bit words whose longer side has
// `longest` pixels at most: each is the mean of those of the page that it stands for. `scale`
// receives the size of the copy in sizes of the page, at most 1. Throws FileError without memory.
files::PixPtr SmallCopy(const ImageRec& image, int32_t longest, double* scale);

}  // namespace vorlane::overlay
