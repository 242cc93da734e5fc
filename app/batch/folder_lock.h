// Keeps two runs from writing into one folder at a time.
#pragma once

#include <string>

namespace vorlane::batch {

// A run over many files has the output folder for itself; runs over one file each, and the shards
// of one run, may work in it side by side.
enum class Sharing { kAlone, kWithOthers };

// The lock is the system's own on the folder: it leaves nothing behind and ends with the process.
// It holds among the processes of one machine.
class FolderLock {
 public:
  // Throws UsageError when another run has the folder. An empty name locks nothing.
  FolderLock(const std::string& folder, Sharing sharing);
  FolderLock(const FolderLock&) = delete;
  FolderLock& operator=(const FolderLock&) = delete;
  ~FolderLock();

 private:
  int handle_ = -1;
};

}  // namespace vorlane::batch
