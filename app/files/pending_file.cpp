#include "app/files/pending_file.h"

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <unistd.h>
#include <utility>
#include <vector>

#include <sys/stat.h>

#include "app/files/byte_source.h"
#include "app/files/errors.h"

namespace vorlane::files {
namespace {

namespace fs = std::filesystem;

// Beside the file it becomes, so that the last step is a rename within one file system. The number
// keeps apart the files that several threads write at once.
std::string TemporaryName(const std::string& path) {
  static std::atomic<uint32_t> count{0};
  const fs::path full(path);
  std::string name = ".";
  name.append(full.filename().string()).append(".").append(std::to_string(::getpid()));
  name.append("-").append(std::to_string(++count)).append(".part");
  return (full.parent_path() / name).string();
}

std::string HandleName(int handle) {
  return std::string("/proc/self/fd/").append(std::to_string(handle));
}

std::string FolderOf(const std::string& path) {
  return (fs::path(path).parent_path() / ".").string();
}

// A file without a name in the folder of `path`, which vanishes with its last handle: not even a
// kill leaves it behind. -1 where the file system has none or none could be given a name later.
int OpenNameless(const std::string& path) {
  const int handle = ::open(FolderOf(path).c_str(), O_RDWR | O_TMPFILE | O_CLOEXEC, 0666);
  if (handle < 0 || ::access(HandleName(handle).c_str(), F_OK) == 0) return handle;
  (void)::close(handle);
  return -1;
}

// The file that a link stands for: it is replaced, the link stays.
std::string ThroughLinks(const std::string& path) {
  std::error_code code;
  const fs::path real = fs::canonical(path, code);
  return code ? path : real.string();
}

}  // namespace

PendingFile::PendingFile(const std::string& path, Replacing replacing, Durability durability)
    : path_(ThroughLinks(path)),
      temporary_(TemporaryName(path_)),
      replacing_(replacing),
      durability_(durability) {
  // As an ordinary new file: the user's umask decides who may read it.
  handle_ = OpenNameless(path_);
  isNamed_ = handle_ < 0;
  if (isNamed_) handle_ = ::open(temporary_.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
  if (handle_ < 0) {
    throw FileError(path_ + ": cannot be written here: " + std::strerror(errno));
  }
}

PendingFile::~PendingFile() {
  if (handle_ >= 0) (void)::close(handle_);
  if (isNamed_) (void)::unlink(temporary_.c_str());
}

void PendingFile::Fail(const char* what) const {
  throw FileError(path_ + ": " + what + ": " + std::strerror(errno) + "; nothing was written");
}

void PendingFile::WriteAt(uint64_t offset, std::span<const uint8_t> bytes) {
  while (!bytes.empty()) {
    const ssize_t done = ::pwrite(handle_, bytes.data(), bytes.size(), static_cast<off_t>(offset));
    if (done < 0 && errno == EINTR) continue;
    if (done < 0) Fail("cannot be written");
    offset += static_cast<uint64_t>(done);
    bytes = bytes.subspan(static_cast<size_t>(done));
  }
}

void PendingFile::Append(std::span<const uint8_t> bytes) {
  WriteAt(size_, bytes);
  size_ += bytes.size();
}

void PendingFile::Overwrite(uint64_t offset, std::span<const uint8_t> bytes) {
  WriteAt(offset, bytes);
}

// Who may read the old file may read the new one, and nobody else.
void PendingFile::KeepRights() const {
  struct stat old {};
  if (::stat(path_.c_str(), &old) != 0) return;
  // Only the superuser can hand on an owner.
  if (::fchown(handle_, old.st_uid, old.st_gid) != 0 && errno != EPERM) {
    Fail("cannot be given its owner");
  }
  if (::fchmod(handle_, old.st_mode & 07777) != 0) Fail("cannot be given its access rights");
}

void PendingFile::GiveTemporaryName() {
  if (isNamed_) return;
  const std::string handle = HandleName(handle_);
  isNamed_ =
      ::linkat(AT_FDCWD, handle.c_str(), AT_FDCWD, temporary_.c_str(), AT_SYMLINK_FOLLOW) == 0;
  if (!isNamed_) Fail("cannot be given a name");
}

// Whether the bytes already stand under the name.
bool PendingFile::IsThere() const {
  const FileSource there(path_);
  if (there.size() != size_) return false;
  std::vector<uint8_t> old(size_t{1} << 16);
  std::vector<uint8_t> made(old.size());
  for (uint64_t at = 0; at < size_; at += old.size()) {
    const size_t count = there.ReadAt(at, old);
    if (::pread(handle_, made.data(), count, static_cast<off_t>(at)) !=
        static_cast<ssize_t>(count)) {
      return false;
    }
    if (!std::equal(old.begin(), old.begin() + static_cast<ptrdiff_t>(count), made.begin())) {
      return false;
    }
  }
  return true;
}

// A link fails where a name is taken, also by a file that appeared a moment ago.
void PendingFile::GiveFreeName() {
  const std::string from = isNamed_ ? temporary_ : HandleName(handle_);
  const int flags = isNamed_ ? 0 : AT_SYMLINK_FOLLOW;
  if (::linkat(AT_FDCWD, from.c_str(), AT_FDCWD, path_.c_str(), flags) == 0) return;
  if (errno == EEXIST) {
    if (replacing_ == Replacing::kIfSame && IsThere()) return;
    throw FileError(path_ + ": has appeared meanwhile and is left as it is; nothing was written");
  }
  // File systems without links.
  GiveTemporaryName();
  if (::renameat2(AT_FDCWD, temporary_.c_str(), AT_FDCWD, path_.c_str(), RENAME_NOREPLACE) != 0) {
    Fail("cannot be given its name");
  }
  isNamed_ = false;
}

void PendingFile::GiveName() {
  if (replacing_ != Replacing::kAllowed) {
    GiveFreeName();
    return;
  }
  KeepRights();
  GiveTemporaryName();
  if (std::rename(temporary_.c_str(), path_.c_str()) != 0) Fail("cannot be given its name");
  isNamed_ = false;
}

void PendingFile::SyncFolder() const {
  const int folder = ::open(FolderOf(path_).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  const bool isSynced = folder >= 0 && ::fsync(folder) == 0;
  const int error = errno;
  if (folder >= 0) (void)::close(folder);
  if (!isSynced) {
    throw FileError(path_ + ": is written, but its folder cannot be brought to the disk: " +
                    std::strerror(error));
  }
}

void PendingFile::Commit() {
  if (durability_ == Durability::kSynced && ::fsync(handle_) != 0) {
    Fail("cannot be brought to the disk");
  }
  GiveName();
  if (::close(std::exchange(handle_, -1)) != 0) {
    const int error = errno;
    (void)::unlink(path_.c_str());
    throw FileError(path_ + ": cannot be written: " + std::strerror(error) +
                    "; what there was of it is removed");
  }
  if (durability_ == Durability::kSynced) SyncFolder();
}

}  // namespace vorlane::files
