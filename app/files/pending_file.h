// A file that appears under its name when it is whole, or not at all.
#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace vorlane::files {

// Whether a file may take the place of one that stands under its name when it gets it. kIfSame: one
// with the same bytes is left to stand, and that is as good.
enum class Replacing { kNever, kIfSame, kAllowed };

// Whether a file's bytes and name have reached the disk before Commit returns.
enum class Durability { kLeftToSystem, kSynced };

// The file has no name or, on file systems without such files, a temporary name beside its own; it
// is dropped unless it is committed. A file that is replaced hands on its access rights.
class PendingFile {
 public:
  // Throws FileError when no file can be made there.
  PendingFile(const std::string& path, Replacing replacing, Durability durability);
  PendingFile(const PendingFile&) = delete;
  PendingFile& operator=(const PendingFile&) = delete;
  ~PendingFile();

  uint64_t size() const { return size_; }

  // Write at the end, or over bytes that stand there. Throw FileError.
  void Append(std::span<const uint8_t> bytes);
  void Overwrite(uint64_t offset, std::span<const uint8_t> bytes);

  // Gives the file its name. Throws FileError when the system refuses, or when nothing may be
  // replaced and a file of that name has appeared.
  void Commit();

 private:
  [[noreturn]] void Fail(const char* what) const;
  void WriteAt(uint64_t offset, std::span<const uint8_t> bytes);
  void KeepRights() const;
  void GiveName();
  void GiveFreeName();
  bool IsThere() const;
  void GiveTemporaryName();
  void SyncFolder() const;

  std::string path_;
  std::string temporary_;
  Replacing replacing_;
  Durability durability_;
  bool isNamed_ = false;  // whether temporary_ stands in the folder
  int handle_ = -1;
  uint64_t size_ = 0;
};

}  // namespace vorlane::files
