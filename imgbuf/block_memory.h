// Memory for image blocks: zeroed, and cheap to touch for the first time.
#pragma once

#include <cstddef>

namespace imgbuf {

// Zeroed storage of `bytes` bytes, aligned to kBlockAlignment; null when there is no memory. Large
// blocks come straight from the system, in large pages where it has them: a fresh page image then
// costs a handful of page faults instead of thousands, or none where the block released last is
// large enough and serves again. Released with ReleaseBlock.
void* AllocateBlock(size_t bytes);

// Returns what AllocateBlock gave; null is ignored.
void ReleaseBlock(void* block);

// Bytes of a released block that are kept for the next one at most.
inline constexpr size_t kMostKept = size_t{64} << 20;

// Keeps no released block of more bytes from now on, at most kMostKept, and gives back the one that
// is kept. Returns the limit before. Only blocks that come straight from the system are kept.
size_t LimitKeptBytes(size_t bytes);
void TrimKeptBlock();

// Vector code likes whole cache lines.
inline constexpr size_t kBlockAlignment = 64;

}  // namespace imgbuf
