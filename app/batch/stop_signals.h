// Ends a run in order when the user or the system asks for it.
#pragma once

#include <atomic>
#include <functional>
#include <thread>

namespace vorlane::batch {

// While one of these lives, the first SIGINT or SIGTERM calls `onStop`, from a thread of its own,
// and the second ends the process at once, with the exit code 128 + signal; files that have no name
// yet vanish with it. Made before other threads are started, so that they leave the signals to it.
class StopSignals {
 public:
  explicit StopSignals(std::function<void()> onStop);
  StopSignals(const StopSignals&) = delete;
  StopSignals& operator=(const StopSignals&) = delete;
  ~StopSignals();

  // The signal that came first; 0: none.
  int signal() const { return signal_; }

 private:
  void Wait();

  std::function<void()> onStop_;
  std::atomic<int> signal_{0};
  std::atomic<bool> isOver_{false};
  std::thread waiter_;
};

}  // namespace vorlane::batch
