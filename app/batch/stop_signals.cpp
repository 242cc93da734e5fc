#include "app/batch/stop_signals.h"

#include <csignal>
#include <cstdio>
#include <exception>
#include <pthread.h>
#include <unistd.h>
#include <utility>

namespace vorlane::batch {
namespace {

// SIGUSR1 ends the waiting.
sigset_t Signals() {
  sigset_t signals;
  sigemptyset(&signals);
  for (const int signal : {SIGINT, SIGTERM, SIGUSR1}) sigaddset(&signals, signal);
  return signals;
}

}  // namespace

StopSignals::StopSignals(std::function<void()> onStop) : onStop_(std::move(onStop)) {
  const sigset_t signals = Signals();
  (void)pthread_sigmask(SIG_BLOCK, &signals, nullptr);
  try {
    waiter_ = std::thread([this] { Wait(); });
  } catch (const std::exception&) {
    // Without a thread that waits for them they end the run at once, as they end any program.
    (void)pthread_sigmask(SIG_UNBLOCK, &signals, nullptr);
  }
}

StopSignals::~StopSignals() {
  if (!waiter_.joinable()) return;
  isOver_ = true;
  (void)pthread_kill(waiter_.native_handle(), SIGUSR1);
  waiter_.join();
  const sigset_t signals = Signals();
  (void)pthread_sigmask(SIG_UNBLOCK, &signals, nullptr);
}

void StopSignals::Wait() {
  const sigset_t signals = Signals();
  while (!isOver_) {
    int signal = 0;
    if (sigwait(&signals, &signal) != 0 || signal == SIGUSR1) continue;
    if (signal_ != 0) ::_exit(128 + signal);
    signal_ = signal;
    onStop_();
  }
}

}  // namespace vorlane::batch
