#include "app/batch/folder_lock.h"

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

#include <sys/file.h>

#include "app/files/page.h"

namespace vorlane::batch {

FolderLock::FolderLock(const std::string& folder, Sharing sharing) {
  if (folder.empty()) return;
  handle_ = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (handle_ < 0) return;  // the first file that is to be written there tells why
  const int kind = sharing == Sharing::kAlone ? LOCK_EX : LOCK_SH;
  // File systems that know no locks take the run without one.
  if (::flock(handle_, kind | LOCK_NB) == 0 || errno != EWOULDBLOCK) return;
  (void)::close(handle_);
  throw files::UsageError(folder +
                          ": another run is writing into this folder; wait for it, name another "
                          "folder, or give each run its --shard");
}

FolderLock::~FolderLock() {
  if (handle_ >= 0) (void)::close(handle_);
}

}  // namespace vorlane::batch
