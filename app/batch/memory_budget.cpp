#include "app/batch/memory_budget.h"

#include <algorithm>
#include <fstream>
#include <string>

namespace vorlane::batch {
namespace {

constexpr int64_t kMostByDefault = int64_t{2} << 30;
constexpr int64_t kLeastByDefault = int64_t{64} << 20;

// What /proc/meminfo calls available, in bytes; 0: it does not say.
int64_t FreeMemory() {
  std::ifstream file("/proc/meminfo");
  std::string word;
  int64_t kilobytes = 0;
  while (file >> word) {
    if (word == "MemAvailable:" && file >> kilobytes) return kilobytes * 1024;
  }
  return 0;
}

}  // namespace

int64_t DefaultMemory() { return std::clamp(FreeMemory() / 2, kLeastByDefault, kMostByDefault); }

MemoryBudget::Share& MemoryBudget::Share::operator=(Share&& other) noexcept {
  if (this != &other) {
    Drop();
    budget_ = std::exchange(other.budget_, nullptr);
    bytes_ = other.bytes_;
    isWorking_ = other.isWorking_;
  }
  return *this;
}

void MemoryBudget::Share::Shrink(int64_t bytes) {
  if (budget_ == nullptr || bytes >= bytes_) return;
  budget_->Return(bytes_ - bytes, false);
  bytes_ = bytes;
}

void MemoryBudget::Share::Park(int64_t bytes) {
  if (budget_ == nullptr || !isWorking_) return;
  budget_->Return(bytes_ - bytes, true);
  bytes_ = bytes;
  isWorking_ = false;
}

void MemoryBudget::Share::Drop() {
  if (budget_ != nullptr) budget_->Return(bytes_, isWorking_);
  budget_ = nullptr;
}

MemoryBudget::Share MemoryBudget::Take(int64_t bytes) {
  std::unique_lock lock(mutex_);
  const uint64_t ticket = next_++;
  changed_.wait(lock, [&] { return ticket == serving_ && Fits(bytes); });
  ++serving_;
  used_ += bytes;
  most_ = std::max(most_, used_);
  ++working_;
  changed_.notify_all();
  return {this, bytes};
}

void MemoryBudget::Return(int64_t bytes, bool wasWorking) {
  const std::lock_guard lock(mutex_);
  used_ -= bytes;
  if (wasWorking) --working_;
  changed_.notify_all();
}

}  // namespace vorlane::batch
