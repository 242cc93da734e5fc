// What a picture file says about a page besides its pixels.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "app/files/common_metadata.h"
#include "app/files/tiff_directory.h"

namespace vorlane::files {

// A chunk of a PNG file that is handed on as it is.
struct PngChunk {
  std::string type;  // four letters
  Bytes data;
};

// A segment of a JPEG file that is handed on as it is.
struct JpegSegment {
  uint8_t marker = 0;
  Bytes data;
};

// The common part goes to files of another format; what belongs to the page's own format goes to
// files of that format, where it says the same and more.
struct Metadata {
  Resolution resolution;
  Bytes icc;
  Bytes xmp;
  Bytes iptc;
  std::vector<TextEntry> texts;
  Bytes exif;  // an EXIF block from its byte-order mark on

  std::vector<TiffEntry> tiffEntries;  // of a TIFF page, without those that describe its pixels
  std::vector<PngChunk> pngChunks;
  std::vector<JpegSegment> jpegSegments;
};

}  // namespace vorlane::files
