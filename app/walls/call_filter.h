// Which of the system's calls a process may still make.
#pragma once

#include <utility>
#include <vector>

#include <linux/filter.h>

namespace vorlane::walls {

// A filter is made in advance, so that a process can take it between fork and exec.
class CallFilter {
 public:
  // Computing, memory that cannot become code, reading open files and messages through open
  // sockets; nothing else. A call that is not allowed fails with EPERM.
  static CallFilter ForDecoders();

  // All that an ordinary program needs but sockets, other processes' memory and the system's
  // controls.
  static CallFilter ForHelpers();

  // Puts this process, and all that it starts, behind the filter for ever; its thread is the only
  // one. Makes no call that is unsafe after a fork. Returns 0, or the system's error number.
  int Apply() const noexcept;

 private:
  explicit CallFilter(std::vector<sock_filter> program) : program_(std::move(program)) {}

  std::vector<sock_filter> program_;
};

}  // namespace vorlane::walls
