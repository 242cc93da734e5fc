// Work in even shares, each on a thread of its own.
#pragma once

#include <array>
#include <cstdint>
#include <new>
#include <system_error>
#include <thread>

namespace vorlane::apply {

inline constexpr int32_t kMostShares = 64;

// Calls work(share, first, last) for `shares` parts of the rows 0..count - 1; 1 <= shares <=
// kMostShares and shares <= count. The first part is the caller's, who also takes those for which
// no thread can be had. `work` does not throw.
template <typename Work>
void InShares(int32_t count, int32_t shares, const Work& work) {
  const auto begin = [&](int32_t share) {
    return static_cast<int32_t>(int64_t{count} * share / shares);
  };
  const auto run = [&](int32_t share) { work(share, begin(share), begin(share + 1) - 1); };

  std::array<std::thread, kMostShares> threads;
  for (int32_t share = 1; share < shares; ++share) {
    try {
      threads[static_cast<size_t>(share)] = std::thread(run, share);
    } catch (const std::system_error&) {  // NOLINT(bugprone-empty-catch): no thread to be had
    } catch (const std::bad_alloc&) {     // NOLINT(bugprone-empty-catch): no room for a thread
    }
  }
  run(0);
  for (int32_t share = 1; share < shares; ++share) {
    std::thread& thread = threads[static_cast<size_t>(share)];
    if (thread.joinable()) {
      thread.join();
    } else {
      run(share);
    }
  }
}

}  // namespace vorlane::apply
