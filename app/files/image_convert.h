// Between pictures of the image-file library and page images.
#pragma once

#include <string>
#include <vector>

#include "app/files/page_pixels.h"
#include "app/files/pix_owner.h"

namespace vorlane::files {

// Brings `pix` to a depth that the services take: 1 bit or 8 bits without a colour table, or
// 32-bit words of red, green and blue without alpha. What is changed on the way is told in `notes`.
// Null when there is no memory.
PixPtr ToServiceDepth(PixPtr pix, std::vector<std::string>* notes);

// Copies a picture of such a depth into a new page image of 1, 8 or 24 bits. Returns the image
// library's status.
int32_t PixToImage(const PixPtr& pix, PagePixels* image);

// Copies a page image of 1, 8 or 24 bits into a new picture. Null when there is no memory.
PixPtr ImageToPix(const ImageRec& image);

// The page image as one grey byte a pixel, width bytes a row, top row first: bits become 0 and 255,
// colours their luminance.
std::vector<uint8_t> ToGreyBuffer(const ImageRec& image);

}  // namespace vorlane::files
