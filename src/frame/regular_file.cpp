#include "frame/regular_file.h"

#include <span>
#include <utility>

#if defined(_WIN32)
#include <windows.h>
#else
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

#include <sys/stat.h>
#endif

namespace vorlanepic::frame {
namespace {

// A file as the system opens it, closed with its scope.
#if defined(_WIN32)

class OpenFile {
 public:
  explicit OpenFile(const char* path)
      : handle_(CreateFileA(path, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                            OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr)) {}
  ~OpenFile() {
    if (handle_ != INVALID_HANDLE_VALUE) CloseHandle(handle_);
  }
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;

  // Its length; negative for what is no regular file.
  int64_t Length() const {
    LARGE_INTEGER length;
    if (handle_ == INVALID_HANDLE_VALUE || GetFileType(handle_) != FILE_TYPE_DISK) return -1;
    return GetFileSizeEx(handle_, &length) != 0 ? length.QuadPart : -1;
  }

  // How many of the next `size` bytes were read, 0 at the end of the file; negative on failure.
  int64_t Read(char* bytes, size_t size) const {
    DWORD taken = 0;
    const auto wanted = static_cast<DWORD>(size);
    return ReadFile(handle_, bytes, wanted, &taken, nullptr) != 0 ? int64_t{taken} : -1;
  }

 private:
  HANDLE handle_;
};

#else

class OpenFile {
 public:
  // Without O_NONBLOCK the opening of a pipe waits for its other end.
  explicit OpenFile(const char* path)
      : descriptor_(open(path, O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC)) {}
  ~OpenFile() {
    if (descriptor_ >= 0) close(descriptor_);
  }
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;

  // Its length; negative for what is no regular file.
  int64_t Length() const {
    struct stat status;
    if (descriptor_ < 0 || fstat(descriptor_, &status) != 0) return -1;
    return S_ISREG(status.st_mode) ? int64_t{status.st_size} : -1;
  }

  // How many of the next `size` bytes were read, 0 at the end of the file; negative on failure.
  int64_t Read(char* bytes, size_t size) const {
    ssize_t taken = 0;
    do {
      taken = read(descriptor_, bytes, size);
    } while (taken < 0 && errno == EINTR);
    return taken;
  }

 private:
  int descriptor_;
};

#endif

// False when reading fails or the file has become shorter.
bool FillFrom(const OpenFile& file, std::span<char> bytes) {
  while (!bytes.empty()) {
    const int64_t taken = file.Read(bytes.data(), bytes.size());
    if (taken <= 0) return false;
    bytes = bytes.subspan(static_cast<size_t>(taken));
  }
  return true;
}

}  // namespace

FileRead ReadRegularFile(const char* path, size_t most, ScratchArray<char>* bytes) {
  *bytes = {};
  const OpenFile file(path);
  const int64_t length = file.Length();
  if (length < 0) return FileRead::kNotOpened;
  if (static_cast<uint64_t>(length) > most) return FileRead::kTooLong;
  ScratchArray<char> content;
  if (!content.Allocate(static_cast<size_t>(length))) return FileRead::kNoMemory;
  if (!FillFrom(file, content.span())) return FileRead::kReadError;
  *bytes = std::move(content);
  return FileRead::kDone;
}

}  // namespace vorlanepic::frame
