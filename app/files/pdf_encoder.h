// Pages as PDF stores them.
#pragma once

#include "app/files/encoded_page.h"

namespace vorlane::files {

// A picture that fills its page: of 1 bit as G4, of a JPEG picture as JPEG with its tables, others
// with Deflate; the page's size follows from the resolution, 300 dots per inch where there is none.
// Throws EncodeError when it cannot be encoded.
EncodedPage EncodePdf(const EncodeJob& job);

// The same without loss.
EncodedPage EncodePdfLossless(const EncodeJob& job);

// A page that stays as it stands in the PDF file that it comes from.
EncodedPage KeepPdfPage(int32_t number);

}  // namespace vorlane::files
