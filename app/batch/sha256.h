// SHA-256 of texts and files, as 64 lower-case hexadecimal digits.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace vorlane::batch {

std::string Sha256Of(std::string_view bytes);

// Of a file's bytes, and their number; empty when it cannot be read.
struct FileDigest {
  std::string sha256;
  int64_t size = 0;
};
FileDigest Sha256OfFile(const std::string& path);

}  // namespace vorlane::batch
