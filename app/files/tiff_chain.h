// Joins TIFF pages into one file without holding more than one in memory.
#pragma once

#include <cstdint>

#include "app/files/encoded_page.h"
#include "app/files/pending_file.h"

namespace vorlane::files {

class TiffChain {
 public:
  // `isBig`: BigTIFF, which may pass 4 GB.
  explicit TiffChain(bool isBig) : isBig_(isBig) {}

  // Puts a page behind those that the file holds. Throws EncodeError when a
  // file of 32-bit offsets would pass 4 GB.
  void Append(EncodedPage page, PendingFile* file);

 private:
  void Begin(PendingFile* file);
  void Reserve(const PendingFile& file, uint64_t bytes) const;

  bool isBig_;
  uint64_t link_ =
      0;  // where the offset of the next page's directory stands; 0: nothing is written
};

}  // namespace vorlane::files
