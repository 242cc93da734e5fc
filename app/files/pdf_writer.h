// Puts pages into a PDF file.
#pragma once

#include <memory>

#include "app/files/byte_source.h"
#include "app/files/encoded_page.h"
#include "app/files/pending_file.h"

namespace vorlane::files {

// The bytes of pages wait on the disk, not in memory.
class PdfWriter {
 public:
  // Pages of the PDF file `source` take the place of the old ones in it, and everything else that
  // it holds stays: document information, page labels, outlines; null: a new file. Throws
  // DecodeError when the source cannot be read.
  explicit PdfWriter(const ByteSource* source);
  PdfWriter(const PdfWriter&) = delete;
  PdfWriter& operator=(const PdfWriter&) = delete;
  ~PdfWriter();

  // Throws FileError.
  void Add(const EncodedPage& page);

  // Writes the file; pages of the source that did not come are left out. Throws FileError.
  void Finish(PendingFile* file);

 private:
  struct Parts;
  std::unique_ptr<Parts> parts_;
};

}  // namespace vorlane::files
