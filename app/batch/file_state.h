// What a file was when it was looked at: enough to see whether it has changed since.
#pragma once

#include <cstdint>
#include <string>

namespace vorlane::batch {

struct FileState {
  int64_t size = -1;     // -1: it cannot be looked at, or nobody did
  std::string modified;  // seconds since 1970 with nine decimals

  bool operator==(const FileState&) const = default;
};

FileState StateOf(const std::string& path);

}  // namespace vorlane::batch
