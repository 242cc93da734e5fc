// Small pictures of a page, for looking at it on a screen.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "vorlanepic/imgbuf.h"

namespace vorlane::review {

// Folders of the pictures below that of the review page: of the contact sheet, and of one page.
inline constexpr const char* kThumbnails = "thumbnails";
inline constexpr const char* kPictures = "pictures";

// Writes both pictures of a page image of 1, 8 or 24 bits below `folder`, replacing what is there:
// JPEG files named by `place`, from "000001.jpg" for 0. The longer side of the larger one has
// `longest` pixels at most. Throws FileError.
void WritePictures(const ImageRec& image, const std::string& folder, size_t place, int32_t longest);

}  // namespace vorlane::review
