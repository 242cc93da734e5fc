// PDF files opened by the PDF library.
#pragma once

#include <memory>

#include <qpdf/QPDF.hh>

#include "app/files/byte_source.h"

namespace vorlane::files {

// A document of its own, which may be changed; one thread may use it at a time, and the source
// outlives it. Throws DecodeError when the file is damaged or asks for a password.
std::unique_ptr<QPDF> OpenPdf(const ByteSource& source);

}  // namespace vorlane::files
