// The TIFF library's view of some bytes, with its messages kept apart from those of other threads.
#pragma once

#include <string>
#include <tiffio.h>
#include <vector>

#include "app/files/byte_source.h"

namespace vorlane::files {

// What the library said about one handle.
struct TiffMessages {
  std::vector<std::string> errors;
  std::vector<std::string> warnings;
  // While pixels are decoded every warning tells of some that are missing.
  bool warningsAreErrors = false;
};

// Reads from a source. The messages go to `messages`; both outlive the handle.
class TiffHandle {
 public:
  // Reads the file's header and no directory. Throws DecodeError.
  TiffHandle(const ByteSource& source, TiffMessages* messages);
  TiffHandle(const TiffHandle&) = delete;
  TiffHandle& operator=(const TiffHandle&) = delete;
  ~TiffHandle();

  TIFF* get() const { return tiff_; }

 private:
  struct Position {
    const ByteSource& source;
    TiffMessages* messages;
    uint64_t at = 0;
  };
  static tmsize_t Read(thandle_t handle, void* to, tmsize_t count);
  static tmsize_t Write(thandle_t handle, void* from, tmsize_t count);
  static toff_t Seek(thandle_t handle, toff_t offset, int whence);
  static int Close(thandle_t handle);
  static toff_t Size(thandle_t handle);

  Position position_;
  TIFF* tiff_;
};

// Options that send a handle's messages to `messages`; freed by the caller.
TIFFOpenOptions* MessageOptions(TiffMessages* messages);

// Whether pages of a compression scheme may be stored as differences.
bool HasPredictor(uint16_t compression);

// Whether it is one of the fax schemes.
bool IsFax(uint16_t compression);

// The first error, as words for people.
std::string FirstError(const TiffMessages& messages);

}  // namespace vorlane::files
