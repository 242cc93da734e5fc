// One page of a file, ready for the services.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

#include "frame/scratch.h"

namespace vorlane::files {

struct Page {
  std::string file;
  int32_t number = 1;                     // 1 for the file's first page
  int32_t count = 1;                      // pages in the file
  vorlanepic::frame::ScratchImage image;  // 1, 8 or 24 bits per pixel
  int32_t xDpi = 0;                       // dots per inch; 0: the file does not say
  int32_t yDpi = 0;
  std::vector<std::string> notes;  // what reading it changed, in words
};

// A file that cannot be read or written; the text names it and says what to do.
struct FileError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// A request that cannot be carried out as it was put.
struct UsageError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

}  // namespace vorlane::files
