// How a page was stored, so that it can be stored alike.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "app/files/file_formats.h"

namespace vorlane::files {

// A quantisation table in the order of the picture's frequencies, row by row.
using JpegTable = std::array<uint16_t, 64>;

struct JpegCoding {
  std::vector<JpegTable> tables;  // of each channel; empty: by quality
  int32_t quality = 0;            // 1..100, estimated from the tables; 0: unknown
  int32_t horizontal = 1;         // luma samples for one colour sample
  int32_t vertical = 1;
  bool isProgressive = false;
};

// Values are those of the TIFF tags; 0: the tag is not there.
struct TiffCoding {
  uint16_t compression = 0;
  uint16_t predictor = 0;
  uint32_t faxOptions = 0;  // of Group 3
  uint32_t rowsPerStrip = 0;
  uint32_t tileWidth = 0;
  uint32_t tileHeight = 0;
  bool isBig = false;  // BigTIFF
};

struct PageCoding {
  FileFormat format = FileFormat::kTiff;
  bool isInverted = false;      // of greys and bits: 0 is white
  bool hasOpaqueAlpha = false;  // an alpha channel that is opaque everywhere
  // Of a page of a PDF file, by how many degrees clockwise it is shown turned; -1: it is of none.
  int32_t rotation = -1;
  TiffCoding tiff;
  JpegCoding jpeg;  // of JPEG files and of TIFF pages compressed so
};

}  // namespace vorlane::files
