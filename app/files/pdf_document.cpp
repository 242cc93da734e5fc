#include "app/files/pdf_document.h"

#include <new>
#include <string>

namespace vorlane::files {

std::unique_ptr<QPDF> OpenPdf(std::FILE* stream) {
  auto pdf = std::make_unique<QPDF>();
  pdf->setSuppressWarnings(true);
  WithPdfErrors<DecodeError>("is damaged: ", [&] {
    try {
      pdf->processFile("PDF file", stream, true);
    } catch (const QPDFExc& error) {
      if (error.getErrorCode() != qpdf_e_password) throw;
      throw DecodeError("asks for a password");
    }
    if (pdf->getAllPages().empty()) throw DecodeError("holds no pages");
  });
  RefuseForgottenObjects(pdf.get());
  return pdf;
}

void RefuseForgottenObjects(QPDF* pdf) {
  for (const QPDFExc& warning : pdf->getWarnings()) {
    const bool isForgotten =
        warning.getMessageDetail().find(std::bad_alloc().what()) != std::string::npos;
    if (isForgotten) throw std::bad_alloc();
  }
}

}  // namespace vorlane::files
