#include "app/batch/file_state.h"

#include <array>
#include <cstdio>

#include <sys/stat.h>

namespace vorlane::batch {

FileState StateOf(const std::string& path) {
  struct stat info {};
  if (::stat(path.c_str(), &info) != 0) return {};
  std::array<char, 48> text{};
  (void)std::snprintf(text.data(), text.size(), "%lld.%09ld",
                      static_cast<long long>(info.st_mtim.tv_sec), info.st_mtim.tv_nsec);
  return {info.st_size, text.data()};
}

}  // namespace vorlane::batch
