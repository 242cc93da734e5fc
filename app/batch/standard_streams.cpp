#include "app/batch/standard_streams.h"

#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <string_view>
#include <unistd.h>

#include "app/files/decoders.h"

namespace vorlane::batch {
namespace {

namespace fs = std::filesystem;

class Handle {
 public:
  explicit Handle(int handle) : handle_(handle) {}
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;
  ~Handle() {
    if (handle_ >= 0) (void)::close(handle_);
  }
  int get() const { return handle_; }

 private:
  int handle_;
};

void Pass(int from, int to, const std::string& name) {
  std::array<char, 1 << 16> buffer{};
  ssize_t count = 0;
  while ((count = ::read(from, buffer.data(), buffer.size())) != 0) {
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) throw files::FileError(name + ": cannot be read: " + std::strerror(errno));
    for (std::string_view rest(buffer.data(), static_cast<size_t>(count)); !rest.empty();) {
      const ssize_t done = ::write(to, rest.data(), rest.size());
      if (done < 0 && errno == EINTR) continue;
      if (done < 0) throw files::FileError(name + ": cannot be written: " + std::strerror(errno));
      rest.remove_prefix(static_cast<size_t>(done));
    }
  }
}

}  // namespace

void SecureStandardStreams() {
  for (const int handle : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (::fcntl(handle, F_GETFD) >= 0) continue;
    // The lowest free descriptor is taken: this one, as all below it are open.
    const int kind = handle == STDIN_FILENO ? O_WRONLY : O_RDONLY;
    if (::open("/dev/null", kind) != handle) std::abort();
  }
}

PassingFolder::~PassingFolder() {
  std::error_code code;
  if (!path_.empty()) (void)fs::remove_all(path_, code);
}

std::string PassingFolder::At(const std::string& name) {
  if (path_.empty()) {
    std::error_code code;
    std::string pattern = (fs::temp_directory_path(code) / "vorlane-XXXXXX").native();
    if (::mkdtemp(pattern.data()) == nullptr) {
      throw files::FileError(pattern + ": no folder can be made: " + std::strerror(errno));
    }
    path_ = pattern;
  }
  return path_ + "/" + name;
}

void KeepStandardInput(const std::string& path) {
  const Handle file(::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
  if (file.get() < 0) {
    throw files::FileError(path + ": cannot be written: " + std::strerror(errno));
  }
  Pass(STDIN_FILENO, file.get(), "the standard input");
  if (::lseek(file.get(), 0, SEEK_END) == 0) throw files::FileError("the standard input is empty");
}

void PassToStandardOutput(const std::string& path) {
  const Handle file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
  if (file.get() < 0) throw files::FileError(path + ": cannot be read: " + std::strerror(errno));
  Pass(file.get(), STDOUT_FILENO, "the standard output");
}

std::string ExtensionByContent(const std::string& path) {
  try {
    switch (files::KindOf(files::FileSource(path))) {
      case files::FileKind::kTiff:
        return ".tif";
      case files::FileKind::kPdf:
        return ".pdf";
      case files::FileKind::kJpeg:
        return ".jpg";
      case files::FileKind::kBmp:
        return ".bmp";
      case files::FileKind::kPnm:
        return ".pnm";
      default:
        return ".png";
    }
  } catch (const std::runtime_error&) {
    return ".png";  // what is wrong with it is told when it is read
  }
}

}  // namespace vorlane::batch
