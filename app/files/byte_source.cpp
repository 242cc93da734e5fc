#include "app/files/byte_source.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

#include <sys/stat.h>

#include "app/files/errors.h"

namespace vorlane::files {

size_t MemorySource::ReadAt(uint64_t offset, std::span<uint8_t> out) const {
  if (offset >= bytes_.size()) return 0;
  const size_t count = std::min(out.size(), bytes_.size() - static_cast<size_t>(offset));
  std::copy_n(bytes_.begin() + static_cast<ptrdiff_t>(offset), count, out.begin());
  return count;
}

FileSource::FileSource(const std::string& path) {
  // A pipe without a writer would otherwise be waited for.
  handle_ = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (handle_ < 0) throw FileError(path + ": cannot be opened: " + std::strerror(errno));
  struct stat info {};
  std::string refusal;
  if (::fstat(handle_, &info) != 0) {
    refusal = std::string("cannot be read: ") + std::strerror(errno);
  } else if (S_ISDIR(info.st_mode)) {
    refusal = "is a folder; name the files in it, as in " + path + "/*.tif";
  } else if (!S_ISREG(info.st_mode)) {
    refusal = "is a device or a pipe, not an ordinary file";
  } else if (info.st_size == 0) {
    refusal = "is empty";
  }
  if (!refusal.empty()) {
    (void)::close(handle_);
    throw FileError(path + ": " + refusal);
  }
  size_ = static_cast<uint64_t>(info.st_size);
}

FileSource::~FileSource() { (void)::close(handle_); }

size_t FileSource::ReadAt(uint64_t offset, std::span<uint8_t> out) const {
  size_t done = 0;
  while (done < out.size()) {
    const ssize_t got =
        ::pread(handle_, out.data() + done, out.size() - done, static_cast<off_t>(offset + done));
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) throw DecodeError(std::string("cannot be read: ") + std::strerror(errno));
    if (got == 0) break;
    done += static_cast<size_t>(got);
  }
  return done;
}

std::vector<uint8_t> ReadAll(const ByteSource& source) {
  std::vector<uint8_t> bytes(static_cast<size_t>(source.size()));
  bytes.resize(source.ReadAt(0, bytes));
  return bytes;
}

}  // namespace vorlane::files
