// Reads the pictures of scanned PDF files, which a program of the poppler project takes out of
// them.
#pragma once

#include <cstdint>

#include "app/files/byte_source.h"
#include "app/files/page.h"
#include "app/files/pdf_pages.h"

namespace vorlane::files {

// Throws DecodeError, which names the program and its Debian package, when it is not installed.
void CheckPdfHelper();

// Reads the picture that is page `number`, turned as the page is shown. A page that is no picture
// gets the reason in `noPicture` and no pixels. Throws DecodeError, with the program's words, when
// the picture is damaged or beyond the limits. Several threads may read pages of one source at
// once.
void ReadPdfPage(const ByteSource& source, const PdfPage& pdf, int32_t number,
                 const ReadLimits& limits, Page* page);

}  // namespace vorlane::files
