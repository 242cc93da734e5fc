// Keeps the memory of the pages in flight within bounds.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <utility>

namespace vorlane::batch {

// Half of the memory that is free now, at most 2 GB.
int64_t DefaultMemory();

// Shares of memory, granted in the order in which they are asked for. A page that needs more than
// there is gets it when no other page is being worked on, so that every page's turn comes.
class MemoryBudget {
 public:
  explicit MemoryBudget(int64_t limit) : limit_(limit) {}

  // A page's share, given back with its scope.
  class Share {
   public:
    Share() = default;
    Share(MemoryBudget* budget, int64_t bytes) : budget_(budget), bytes_(bytes) {}
    Share(Share&& other) noexcept { *this = std::move(other); }
    Share& operator=(Share&& other) noexcept;
    ~Share() { Drop(); }

    // Less is needed than was thought.
    void Shrink(int64_t bytes);

    // The work is done and `bytes` of results wait for those of other pages.
    void Park(int64_t bytes);

   private:
    void Drop();

    MemoryBudget* budget_ = nullptr;
    int64_t bytes_ = 0;
    bool isWorking_ = true;
  };

  // Waits until `bytes` can be had.
  Share Take(int64_t bytes);

  int64_t most() const { return most_; }  // in use at one time so far

 private:
  void Return(int64_t bytes, bool wasWorking);
  bool Fits(int64_t bytes) const { return working_ == 0 || used_ + bytes <= limit_; }

  std::mutex mutex_;
  std::condition_variable changed_;
  int64_t limit_;
  int64_t used_ = 0;
  int64_t most_ = 0;
  int32_t working_ = 0;
  uint64_t next_ = 0;     // the ticket to be drawn next
  uint64_t serving_ = 0;  // the ticket whose turn it is
};

}  // namespace vorlane::batch
