// A page of a PDF file that is one picture.
#pragma once

#include <cstdint>
#include <vector>

#include "app/files/common_metadata.h"

namespace vorlane::files {

enum class PdfCoding { kFax, kJpeg, kDeflate };

// What a PDF file says of a page and its picture.
struct PdfPicture {
  int32_t number = 0;   // the page of the source that it takes the place of, from 1; 0: it is new
  bool isKept = false;  // it stays as it stands there; nothing else counts
  PdfCoding coding = PdfCoding::kDeflate;
  int32_t width = 0;
  int32_t height = 0;
  int32_t channels = 1;
  double pointsWide = 0;
  double pointsHigh = 0;
  Bytes icc;
  std::vector<TextEntry> texts;
};

}  // namespace vorlane::files
