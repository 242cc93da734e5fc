// Puts pages into a PDF file.
#pragma once

#include <cstdint>
#include <cstdio>
#include <functional>
#include <memory>

#include "app/files/pdf_picture.h"

namespace vorlane::files {

// The bytes of pages wait on the disk, not in memory.
class PdfWriter {
 public:
  // Where the bytes of the file go, one piece after the other.
  using Sink = std::function<void(const uint8_t* bytes, size_t count)>;

  // Pages of the PDF file that `source` gives take the place of the old ones in it, and everything
  // else that it holds stays: document information, page labels, outlines; null: a new file. The
  // stream is closed with the writer, and what it reads from outlives it. Throws DecodeError when
  // the source cannot be read.
  explicit PdfWriter(std::FILE* source);
  PdfWriter(const PdfWriter&) = delete;
  PdfWriter& operator=(const PdfWriter&) = delete;
  ~PdfWriter();

  // Adds a page with the bytes of its picture. Throws FileError.
  void Add(const PdfPicture& picture, const Bytes& bytes);

  // Writes the file; pages of the source that did not come are left out. Throws FileError,
  // and what the sink throws.
  void Finish(const Sink& sink);

 private:
  struct Parts;
  std::unique_ptr<Parts> parts_;
};

}  // namespace vorlane::files
