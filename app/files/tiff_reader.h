// Reads the pages of TIFF files: strips and tiles, all kinds of samples that are whole numbers, all
// compression schemes that the TIFF library knows.
#pragma once

#include <cstdint>

#include "app/files/byte_source.h"
#include "app/files/page.h"
#include "app/files/tiff_directory.h"

namespace vorlane::files {

// Reads the page whose directory is at `directory`. Throws DecodeError, with the decoder's words,
// when anything of it is missing, damaged or beyond the limits. Several threads may read pages of
// one source at once.
void ReadTiffPage(const ByteSource& source, const TiffHeader& header, uint64_t directory,
                  const ReadLimits& limits, Page* page);

}  // namespace vorlane::files
