// Pages as the formats without compression store them.
#pragma once

#include "app/files/encoded_page.h"

namespace vorlane::files {

EncodedPage EncodeBmp(const EncodeJob& job);

// Binary PNM: P4 for bits, P5 for greys, P6 for colours; a format that names one of them gets that
// one. Throws EncodeError where PBM or PGM would lose levels or colours.
EncodedPage EncodePnm(FileFormat format, const EncodeJob& job);

}  // namespace vorlane::files
