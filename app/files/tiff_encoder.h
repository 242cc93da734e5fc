// Pages as TIFF stores them.
#pragma once

#include <optional>

#include "app/files/encoded_page.h"
#include "app/files/picture_file.h"

namespace vorlane::files {

// Stores the picture as the page's file did when that was TIFF: compression with its parameters,
// strips, the sense of greys. Others become G4 when they have 1 bit and Deflate with differences
// otherwise. Throws EncodeError when it cannot be encoded.
EncodedPage EncodeTiff(const EncodeJob& job);

// A page of a TIFF file as it stands there: its strips and all entries of its directory. Nothing
// where that cannot be done, as for 16-bit samples of the other byte order. Throws DecodeError.
std::optional<EncodedPage> CopyTiffPage(const PictureFile::TiffPlace& place);

}  // namespace vorlane::files
