// Writes page images to a file that appears under its name only when it is whole.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "app/files/file_formats.h"
#include "app/files/multi_page_tiff.h"
#include "app/files/pix_owner.h"
#include "vorlanepic/imgbuf.h"

namespace vorlane::files {

// A file without a name or, where there are none, under a temporary name beside its own; dropped
// unless it is committed.
class PendingFile {
 public:
  explicit PendingFile(const std::string& path);
  PendingFile(const PendingFile&) = delete;
  PendingFile& operator=(const PendingFile&) = delete;
  ~PendingFile();

  // Throw FileError when the file system refuses.
  void Write(const void* bytes, size_t count);
  void WriteAt(uint32_t offset, const void* bytes, size_t count);  // then goes back to the end
  void Commit();

 private:
  [[noreturn]] void Fail(const char* what);

  std::string path_;
  std::string temporary_;
  bool isNamed_ = false;  // whether temporary_ stands in the directory
  std::FILE* file_ = nullptr;
};

class PageWriter {
 public:
  // The name's extension chooses the format, which is one that can be written.
  // jpegQuality 1..100. Throws FileError when no file can be made there.
  PageWriter(const std::string& path, int32_t jpegQuality);

  // Adds a page: to a TIFF file any number, to another exactly one. 1-bit pages are kept as G4 in
  // TIFF files and become grey where a format has no bits. Resolution in dots per inch, 0: unknown.
  // Throws FileError.
  void Add(const ImageRec& image, int32_t xDpi, int32_t yDpi);
  void Add(PixPtr pix);

  int32_t pages() const { return pages_; }

  // Gives the file its name. Throws FileError.
  void Commit();

 private:
  std::vector<uint8_t> Encode(PixPtr pix) const;

  std::string path_;
  FileFormat format_;
  int32_t jpegQuality_;
  PendingFile file_;
  TiffChain chain_;
  int32_t pages_ = 0;
};

}  // namespace vorlane::files
