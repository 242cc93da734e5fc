#include "app/files/temporary_folder.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include "app/files/errors.h"

namespace vorlane::files {

namespace fs = std::filesystem;

TemporaryFolder::TemporaryFolder() {
  std::error_code code;
  const fs::path place = fs::temp_directory_path(code);
  path_ = (code ? fs::path("/tmp") : place) / "vorlane-XXXXXX";
  if (::mkdtemp(path_.data()) == nullptr) {
    throw FileError(path_ + ": no folder can be made there: " + std::strerror(errno));
  }
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code code;
  fs::remove_all(path_, code);
}

std::vector<std::string> TemporaryFolder::Files() const {
  std::vector<std::string> files;
  for (const fs::directory_entry& entry : fs::directory_iterator(path_)) {
    files.push_back(entry.path().native());
  }
  std::sort(files.begin(), files.end());
  return files;
}

}  // namespace vorlane::files
