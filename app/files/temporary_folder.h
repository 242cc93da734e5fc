// A folder for files that are needed for a while.
#pragma once

#include <string>
#include <vector>

namespace vorlane::files {

// Nobody else can look into it; it goes with its scope, whatever is in it.
class TemporaryFolder {
 public:
  // Throws FileError when no folder can be made.
  TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  ~TemporaryFolder();

  const std::string& path() const { return path_; }
  std::string At(const std::string& name) const { return path_ + "/" + name; }

  // The paths of the files in it, in the order of their names.
  std::vector<std::string> Files() const;

 private:
  std::string path_;
};

}  // namespace vorlane::files
