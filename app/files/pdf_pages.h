// The pages of PDF files and which of them are one picture each, as scanners make them.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "app/files/common_metadata.h"

namespace vorlane::files {

struct PdfPage {
  std::string refusal;  // why the page is not one picture; empty: it is
  uint32_t width = 0;   // of the picture as it is stored, in pixels
  uint32_t height = 0;
  int32_t rotation = 0;   // degrees clockwise by which the page is shown turned: 0, 90, 180 or 270
  Resolution resolution;  // of the picture as it is stored
};

// Looks at all pages of a stream, which is closed; decodes nothing. Throws DecodeError when the
// file is damaged, asks for a password or has more than `most` pages.
std::vector<PdfPage> LookAtPdf(std::FILE* stream, size_t most);

}  // namespace vorlane::files
