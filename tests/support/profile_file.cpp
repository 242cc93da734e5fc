#include "support/profile_file.h"

#include <atomic>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

namespace vorlanepic::testing {
namespace {

// Apart from those of other test programs that run at the same time.
std::string UniqueName() {
  static std::atomic<int> count{0};
  const auto now = std::chrono::steady_clock::now().time_since_epoch().count();
  return "vorlanepic_" + std::to_string(now) + "_" + std::to_string(count++) + ".ini";
}

}  // namespace

ProfileOnDisk::ProfileOnDisk(std::string_view bytes)
    : path_((std::filesystem::temp_directory_path() / UniqueName()).string()) {
  std::ofstream(path_, std::ios::binary)
      .write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

ProfileOnDisk::~ProfileOnDisk() { std::remove(path_.c_str()); }

}  // namespace vorlanepic::testing
