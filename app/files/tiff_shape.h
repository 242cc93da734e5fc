// What the tags of a TIFF page say about its pixels.
#pragma once

#include <cstdint>
#include <optional>
#include <tiffio.h>

#include "app/files/sample_layout.h"

namespace vorlane::files {

// Values of the tags, or those that the format has for a tag that is missing.
struct TiffShape {
  uint32_t width = 0;
  uint32_t height = 0;
  uint16_t bits = 1;
  uint16_t samples = 1;
  uint16_t sampleFormat = SAMPLEFORMAT_UINT;
  uint16_t compression = COMPRESSION_NONE;
  uint16_t photometric = PHOTOMETRIC_MINISBLACK;
  uint16_t planes = PLANARCONFIG_CONTIG;
  uint16_t orientation = ORIENTATION_TOPLEFT;
  uint16_t fillOrder = FILLORDER_MSB2LSB;
  uint16_t predictor = PREDICTOR_NONE;
  uint32_t faxOptions = 0;
  bool isSwapped = false;  // against this machine's byte order
  bool isTiled = false;
  uint32_t blockWidth = 0;  // of a strip or tile
  uint32_t blockHeight = 0;
};

// The shape of the page that `tiff` stands at.
TiffShape ShapeOf(TIFF* tiff);

// Throws DecodeError for kinds of samples that are not served.
void RefuseKinds(const TiffShape& shape);

// How the page's rows are handed over; nothing where they go through the TIFF library's own
// conversion to colour. Throws DecodeError for palettes that are missing or too large.
std::optional<SampleLayout> LayoutOf(TIFF* tiff, const TiffShape& shape);

}  // namespace vorlane::files
