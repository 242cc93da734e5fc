#include "app/files/pdf_document.h"

#include <cstdio>

#include <qpdf/QPDFExc.hh>

#include "app/files/errors.h"

namespace vorlane::files {

std::unique_ptr<QPDF> OpenPdf(const ByteSource& source) {
  // By the open file, not by a name that may stand for another one by now.
  const std::string path = "/proc/self/fd/" + std::to_string(source.handle());
  std::FILE* file = source.handle() < 0 ? nullptr : std::fopen(path.c_str(), "rb");
  if (file == nullptr) throw DecodeError("a PDF file can be read from the disk only");
  auto pdf = std::make_unique<QPDF>();
  pdf->setSuppressWarnings(true);
  try {
    pdf->processFile("PDF file", file, true);
    if (pdf->getAllPages().empty()) throw DecodeError("holds no pages");
  } catch (const QPDFExc& error) {
    if (error.getErrorCode() == qpdf_e_password) throw DecodeError("asks for a password");
    throw DecodeError("is damaged: " + error.getMessageDetail());
  }
  return pdf;
}

}  // namespace vorlane::files
