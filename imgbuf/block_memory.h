// Memory for image blocks: zeroed, and cheap to touch for the first time.
#pragma once

#include <cstddef>

namespace imgbuf {

// Zeroed storage of `bytes` bytes, aligned to kBlockAlignment; null when there is no memory. Large
// blocks come straight from the system, in large pages where it has them: a fresh page image then
// costs a handful of page faults instead of thousands. Released with ReleaseBlock.
void* AllocateBlock(size_t bytes);

// Returns what AllocateBlock gave; null is ignored.
void ReleaseBlock(void* block);

// Vector code likes whole cache lines.
inline constexpr size_t kBlockAlignment = 64;

}  // namespace imgbuf
