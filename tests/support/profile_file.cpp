#include "support/profile_file.h"

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace vorlanepic::testing {
namespace {

// By the C library's calls alone, because the memory sanitizer follows those.
std::string TemporaryFolder() {
  for (const char* name : {"TMPDIR", "TEMP"}) {
    const char* folder = std::getenv(name);
    if (folder != nullptr) return folder;
  }
  return "/tmp";
}

// Apart from those of other test programs that run at the same time.
std::string UniqueName() {
  static std::atomic<int> count{0};
  const auto now = std::chrono::steady_clock::now().time_since_epoch().count();
  return "vorlanepic_" + std::to_string(now) + "_" + std::to_string(count++) + ".ini";
}

}  // namespace

ProfileOnDisk::ProfileOnDisk(std::string_view bytes)
    : path_(TemporaryFolder() + "/" + UniqueName()) {
  std::FILE* file = std::fopen(path_.c_str(), "wb");
  const bool written =
      file != nullptr &&
      (bytes.empty() || std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size());
  if (!written || std::fclose(file) != 0) {
    std::perror(path_.c_str());
    std::abort();
  }
}

ProfileOnDisk::~ProfileOnDisk() { std::remove(path_.c_str()); }

}  // namespace vorlanepic::testing
