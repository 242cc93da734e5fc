#include "app/batch/work_queue.h"

#include <algorithm>
#include <utility>

namespace vorlane::batch {

std::optional<Task> WorkQueue::TakePage() {
  if (open_.empty()) return std::nullopt;
  Open& first = open_.front();
  Task task{first.index, first.input, first.next++};
  if (first.next > first.pages) open_.pop_front();
  return task;
}

std::optional<Task> WorkQueue::Take() {
  std::unique_lock lock(mutex_);
  while (!isStopped_) {
    if (auto page = TakePage()) return page;
    const bool hasMore = nextInput_ < inputs_;
    if (!hasMore && opening_ == 0) break;
    if (hasMore && nextInput_ < head_ + window_) {
      ++opening_;
      return Task{nextInput_++, nullptr, 0};
    }
    changed_.wait(lock);
  }
  return std::nullopt;
}

void WorkQueue::Opened(size_t index, std::shared_ptr<InputWork> input, int32_t pages) {
  const std::lock_guard lock(mutex_);
  --opening_;
  if (pages > 0) {
    const auto at = std::find_if(open_.begin(), open_.end(),
                                 [index](const Open& other) { return other.index > index; });
    open_.insert(at, {index, std::move(input), 1, pages});
  }
  changed_.notify_all();
}

void WorkQueue::Advance(size_t head) {
  const std::lock_guard lock(mutex_);
  if (head <= head_) return;
  head_ = head;
  changed_.notify_all();
}

void WorkQueue::Stop() {
  const std::lock_guard lock(mutex_);
  isStopped_ = true;
  changed_.notify_all();
}

bool WorkQueue::isStopped() const {
  const std::lock_guard lock(mutex_);
  return isStopped_;
}

}  // namespace vorlane::batch
