// Hands the pages of many files to several threads.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>

namespace vorlane::batch {

class InputWork;

// What a thread is to do next: open input number `index`, or work on a page of an open one.
struct Task {
  size_t index = 0;
  std::shared_ptr<InputWork> input;  // null: open it
  int32_t page = 0;
};

// Inputs are opened in their order, pages are handed out in theirs, and those of earlier inputs go
// first.
class WorkQueue {
 public:
  // At most `window` inputs are opened beyond the first that is not yet reported.
  WorkQueue(size_t inputs, size_t window) : inputs_(inputs), window_(window) {}

  // Waits for something to do; nothing when all is handed out or the run was stopped.
  std::optional<Task> Take();

  // An input that was taken is open and has pages 1..pages to hand out; 0: there is nothing to do.
  void Opened(size_t index, std::shared_ptr<InputWork> input, int32_t pages);

  // The first input that is not yet reported.
  void Advance(size_t head);

  // Hands out nothing more.
  void Stop();
  bool isStopped() const;

 private:
  struct Open {
    size_t index;
    std::shared_ptr<InputWork> input;
    int32_t next;
    int32_t pages;
  };

  std::optional<Task> TakePage();

  mutable std::mutex mutex_;
  std::condition_variable changed_;
  size_t inputs_;
  size_t window_;
  size_t head_ = 0;
  size_t nextInput_ = 0;
  size_t opening_ = 0;     // inputs that were taken and are not open yet
  std::deque<Open> open_;  // with pages to hand out, by index
  bool isStopped_ = false;
};

}  // namespace vorlane::batch
