// Pages as PNG stores them.
#pragma once

#include "app/files/encoded_page.h"

namespace vorlane::files {

// The picture as bits, 8-bit greys or 24-bit colours, with an opaque alpha channel where the page
// had one, and with all that the page's file said that PNG can say.
EncodedPage EncodePng(const EncodeJob& job);

}  // namespace vorlane::files
