// The EXIF block of a picture: a TIFF file without pixels.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "app/files/metadata.h"

namespace vorlane::files {

struct ExifFacts {
  uint32_t orientation = 1;  // 1 to 8
  Resolution resolution;
};

// What a block says about the picture; what it does not say stays as above.
ExifFacts ReadExifFacts(std::span<const uint8_t> exif);

// Brings a block in line with a picture that stands upright and has this size, where it speaks of
// them, and unhooks the preview of the picture as it was. Everything else stays byte for byte.
void ResetExif(int32_t width, int32_t height, Bytes* exif);

// The entries of a block with the directories below them; none when it cannot be read.
std::vector<TiffEntry> EntriesOfExif(std::span<const uint8_t> exif);

// A block of entries; empty for none.
Bytes ExifOfEntries(const std::vector<TiffEntry>& entries);

// Pixels per inch from a directory's resolution entries.
Resolution ResolutionOf(const std::vector<TiffEntry>& entries);

}  // namespace vorlane::files
