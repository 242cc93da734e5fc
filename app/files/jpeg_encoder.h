// Pages as JPEG stores them.
#pragma once

#include "app/files/encoded_page.h"

namespace vorlane::files {

// With the page's own quantisation tables and subsampling where it was a JPEG picture and no
// quality is asked for. 1-bit pages become grey. Throws EncodeError when the
// picture cannot be encoded: no side may pass 65500 pixels.
EncodedPage EncodeJpeg(const EncodeJob& job);

}  // namespace vorlane::files
