// Which files a program may still open.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace vorlane::walls {

// The kernel's Landlock. Made in advance, so that a process can take it between fork and exec.
class FileWalls {
 public:
  // What stays open: reading and running what is in these folders, those of them that exist; all in
  // the folder `own`; and the file that is open as `input`. Throws std::system_error.
  FileWalls(const std::vector<std::string>& readable, const std::string& own, int input);
  FileWalls(FileWalls&& other) noexcept : rules_(std::exchange(other.rules_, -1)) {}
  FileWalls& operator=(FileWalls&&) = delete;
  ~FileWalls();

  // Puts this process, and all that it starts, behind the walls for ever. Makes no call that is
  // unsafe after a fork. Returns 0, or the system's error number.
  int Apply() const noexcept;

 private:
  void Open(int handle, uint64_t rights) const;
  void OpenFolder(const std::string& path, uint64_t rights, bool isNeeded) const;

  int rules_ = -1;
};

}  // namespace vorlane::walls
