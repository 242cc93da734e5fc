// Large pages: how big they are, and advice to the system about large arrays.
#pragma once

#include <cstddef>
#include <cstdint>

#if defined(__linux__)
#include <sys/mman.h>
#endif

namespace vorlanepic::frame {

// Bytes of a large page where the system has them.
inline constexpr size_t kLargePage = size_t{2} << 20;

// Asks for large pages behind a heap block that is about to be written for the first time: each
// costs one page fault instead of 512. Advice only, and only for what large pages fill wholly.
inline void AdviseLargePages([[maybe_unused]] void* block, [[maybe_unused]] size_t bytes) {
#if defined(__linux__)
  const auto start = reinterpret_cast<uintptr_t>(block);
  const uintptr_t first = (start + kLargePage - 1) / kLargePage * kLargePage;
  const uintptr_t end = (start + bytes) / kLargePage * kLargePage;
  if (first < end) madvise(reinterpret_cast<void*>(first), end - first, MADV_HUGEPAGE);
#endif
}

}  // namespace vorlanepic::frame
