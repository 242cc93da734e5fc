// Reads the pages of an image file one after the other.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "app/files/page.h"

namespace vorlane::files {

class PageReader {
 public:
  // Looks at the file. Throws FileError when it is missing, a folder, unreadable, empty, no image
  // or too large.
  explicit PageReader(const std::string& path);

  int32_t count() const { return count_; }

  // Reads the next page into *page; false after the last one. Throws FileError when it is damaged.
  bool Next(Page* page);

 private:
  std::string path_;
  int32_t format_ = 0;
  int32_t count_ = 1;
  int32_t done_ = 0;
  size_t offset_ = 0;  // where the next page of a TIFF file begins
};

}  // namespace vorlane::files
