// What TIFF directories say about a page besides its pixels.
#pragma once

#include <cstdint>
#include <vector>

#include "app/files/page.h"
#include "app/files/tiff_directory.h"

namespace vorlane::files {

// Fills the page's metadata from the directory at `directory`. Throws DecodeError when the
// directory or values of it lie beyond the end of the file.
void ReadTiffMetadata(const ByteSource& source, const TiffHeader& header, uint64_t directory,
                      Page* page);

// The entries that a page with this metadata has besides those that describe its pixels: all of
// them when it comes from a TIFF file, else what other formats say as well.
std::vector<TiffEntry> TiffEntriesOf(const Metadata& metadata);

}  // namespace vorlane::files
