#include "app/files/pdf_document.h"

#include <cstdio>

#include <qpdf/QPDFExc.hh>

#include "app/files/errors.h"

namespace vorlane::files {
namespace {

// The library wants a stream: here one over a source, which needs no file to be opened.
struct Position {
  const ByteSource& source;
  uint64_t at = 0;
};

ssize_t Read(void* cookie, char* to, size_t count) {
  auto* position = static_cast<Position*>(cookie);
  try {
    const size_t got =
        position->source.ReadAt(position->at, {reinterpret_cast<uint8_t*>(to), count});
    position->at += got;
    return static_cast<ssize_t>(got);
  } catch (const DecodeError&) {
    return -1;
  }
}

int Seek(void* cookie, off64_t* offset, int whence) {
  auto* position = static_cast<Position*>(cookie);
  const uint64_t from = whence == SEEK_CUR   ? position->at
                        : whence == SEEK_END ? position->source.size()
                                             : 0;
  const int64_t to = static_cast<int64_t>(from) + *offset;
  if (to < 0) return -1;
  position->at = static_cast<uint64_t>(to);
  *offset = to;
  return 0;
}

int Close(void* cookie) {
  delete static_cast<Position*>(cookie);
  return 0;
}

std::FILE* StreamOf(const ByteSource& source) {
  auto position = std::make_unique<Position>(Position{source});
  const cookie_io_functions_t functions = {Read, nullptr, Seek, Close};
  std::FILE* stream = ::fopencookie(position.get(), "rb", functions);
  if (stream == nullptr) throw std::bad_alloc();
  (void)position.release();  // closed with the stream
  return stream;
}

}  // namespace

std::unique_ptr<QPDF> OpenPdf(const ByteSource& source) {
  auto pdf = std::make_unique<QPDF>();
  pdf->setSuppressWarnings(true);
  try {
    pdf->processFile("PDF file", StreamOf(source), true);
    if (pdf->getAllPages().empty()) throw DecodeError("holds no pages");
  } catch (const QPDFExc& error) {
    if (error.getErrorCode() == qpdf_e_password) throw DecodeError("asks for a password");
    throw DecodeError("is damaged: " + error.getMessageDetail());
  }
  return pdf;
}

}  // namespace vorlane::files
