// The process that starts the others.
//
// A process that has threads can hardly fork: locks that other threads hold stay locked in the
// child. So one is forked before there are any, which does nothing but start processes when it is
// asked, and tell how they ended.
#pragma once

#include <functional>
#include <mutex>

#include <sys/types.h>

#include "app/cage/channel.h"

namespace vorlane::cage {

class Keeper {
 public:
  // What a process does with its end of the connection; it ends when this returns.
  using Work = std::function<void(Descriptor end)>;

  // Made while the process has one thread, which outlives it. It and all that it starts are in a
  // group of their own, let signals from the keyboard pass, hold no file of ours, and end with us
  // however we end. Throws std::system_error.
  explicit Keeper(const Work& work);
  Keeper(const Keeper&) = delete;
  Keeper& operator=(const Keeper&) = delete;
  ~Keeper();

  // From any thread. Starts a process at that end of a connection. Throws ChannelError.
  pid_t Start(const Descriptor& end);

  // Ends a process that was started, where it has not ended yet, and returns how it did, as waitpid
  // tells it. Throws ChannelError.
  int End(pid_t process);

  pid_t process() const { return process_; }

 private:
  int Ask(uint32_t kind, int value, int file);

  std::mutex mutex_;
  Channel channel_{Descriptor()};
  pid_t process_ = -1;
};

}  // namespace vorlane::cage
