// Small files, read whole.
#pragma once

#include <cstddef>
#include <cstdint>

#include "frame/scratch.h"

namespace vorlanepic::frame {

enum class FileRead {
  kDone,
  kNotOpened,  // there is no such file, it may not be read, or it is a directory, device or pipe
  kTooLong,
  kReadError,
  kNoMemory,
};

// Reads the regular file at `path` into *bytes, as it stands on the disk; others may hold it open.
// Nothing that is not a regular file is waited for. *bytes holds something only when all is read.
//
//   most  the longest file that is taken, in bytes
FileRead ReadRegularFile(const char* path, size_t most, ScratchArray<char>* bytes);

}  // namespace vorlanepic::frame
