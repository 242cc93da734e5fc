// What reading and writing files can fail with.
#pragma once

#include <stdexcept>

namespace vorlane::files {

// A file that cannot be read or written; the text names it and says what to do.
struct FileError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// What a decoder found wrong with the bytes of a picture; the text does not name the file.
struct DecodeError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// What a format cannot hold; the text does not name the file.
struct EncodeError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// A request that cannot be carried out as it was put.
struct UsageError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

}  // namespace vorlane::files
