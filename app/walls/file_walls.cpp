#include "app/walls/file_walls.h"

#include <cerrno>
#include <cstdint>
#include <fcntl.h>
#include <system_error>
#include <unistd.h>

#include <linux/landlock.h>
#include <sys/prctl.h>
#include <sys/syscall.h>

namespace vorlane::walls {
namespace {

// The C library has no names for these calls. All rights of the first version: later ones refine
// what these already deny, but for cutting files short, which needs a file opened for writing.
constexpr uint64_t kReading =
    LANDLOCK_ACCESS_FS_EXECUTE | LANDLOCK_ACCESS_FS_READ_FILE | LANDLOCK_ACCESS_FS_READ_DIR;
constexpr uint64_t kAll = (LANDLOCK_ACCESS_FS_MAKE_SYM << 1) - 1;

[[noreturn]] void Fail(const std::string& what) {
  throw std::system_error(errno, std::system_category(), what);
}

}  // namespace

FileWalls::FileWalls(const std::vector<std::string>& readable, const std::string& own, int input) {
  landlock_ruleset_attr handled{};
  handled.handled_access_fs = kAll;
  rules_ = static_cast<int>(::syscall(SYS_landlock_create_ruleset, &handled, sizeof(handled), 0));
  if (rules_ < 0) Fail("Landlock");
  try {
    for (const std::string& path : readable) OpenFolder(path, kReading, false);
    OpenFolder(own, kAll, true);
    Open(input, LANDLOCK_ACCESS_FS_READ_FILE);
  } catch (...) {
    (void)::close(rules_);
    throw;
  }
}

FileWalls::~FileWalls() {
  if (rules_ >= 0) (void)::close(rules_);
}

void FileWalls::Open(int handle, uint64_t rights) const {
  landlock_path_beneath_attr rule{};
  rule.allowed_access = rights;
  rule.parent_fd = handle;
  if (::syscall(SYS_landlock_add_rule, rules_, LANDLOCK_RULE_PATH_BENEATH, &rule, 0) != 0) {
    Fail("Landlock");
  }
}

void FileWalls::OpenFolder(const std::string& path, uint64_t rights, bool isNeeded) const {
  const int handle = ::open(path.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
  if (handle < 0 && !isNeeded) return;
  if (handle < 0) Fail(path);
  try {
    Open(handle, rights);
  } catch (...) {
    (void)::close(handle);
    throw;
  }
  (void)::close(handle);
}

int FileWalls::Apply() const noexcept {
  if (::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0) return errno;
  return ::syscall(SYS_landlock_restrict_self, rules_, 0) == 0 ? 0 : errno;
}

}  // namespace vorlane::walls
