#include "block_memory.h"

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#if defined(__linux__)
#include <sys/mman.h>

#include "frame/large_pages.h"
#endif

#if defined(__has_feature)
#define IMGBUF_HAS_FEATURE(feature) __has_feature(feature)
#else
#define IMGBUF_HAS_FEATURE(feature) 0
#endif
#if defined(__SANITIZE_ADDRESS__) || IMGBUF_HAS_FEATURE(address_sanitizer)
#include <sanitizer/asan_interface.h>
#else
#define ASAN_POISON_MEMORY_REGION(address, size) \
  (static_cast<void>(address), static_cast<void>(size))
#define ASAN_UNPOISON_MEMORY_REGION(address, size) \
  (static_cast<void>(address), static_cast<void>(size))
#endif

namespace imgbuf {
namespace {

// Stands in front of every block, so that a release needs nothing but the block.
struct alignas(kBlockAlignment) BlockHeader {
  void* base;    // what the system gave
  size_t bytes;  // length of a mapping; 0 for heap storage
};

// Behind `base`, which has room for one alignment step more than header and block need.
void* PlaceBlock(void* base, size_t mappedBytes) {
  const uintptr_t address = reinterpret_cast<uintptr_t>(base);
  const size_t shift = (kBlockAlignment - address % kBlockAlignment) % kBlockAlignment;
  auto* header = reinterpret_cast<BlockHeader*>(static_cast<uint8_t*>(base) + shift);
  *header = {base, mappedBytes};
  return header + 1;
}

#if defined(__linux__)
using vorlanepic::frame::kLargePage;

void Unmap(BlockHeader* block) {
  const BlockHeader header = *block;
  munmap(header.base, header.bytes);
}

// Where a released image is still used, the address sanitizer tells.
void Forbid(BlockHeader* block) {
  ASAN_POISON_MEMORY_REGION(block + 1, block->bytes - sizeof(*block));
}
void Allow(BlockHeader* block) {
  ASAN_UNPOISON_MEMORY_REGION(block + 1, block->bytes - sizeof(*block));
}

// The mapping released last: touching fresh memory for the first time costs more than clearing what
// is there, on virtual machines many times as much.
class KeptMapping {
 public:
  constexpr KeptMapping() = default;
  KeptMapping(const KeptMapping&) = delete;
  KeptMapping& operator=(const KeptMapping&) = delete;
  // When the library is unloaded; others may release images even later.
  ~KeptMapping() { Limit(0); }

  size_t Limit(size_t bytes) {
    const size_t before = most_.exchange(std::min(bytes, kMostKept));
    Trim();
    return before;
  }

  void Trim() { Drop(block_.exchange(nullptr)); }

  // Keeps `block` in place of the one before, or gives it back to the system.
  void Keep(BlockHeader* block) {
    if (block->bytes > most_.load(std::memory_order_relaxed)) {
      Unmap(block);
      return;
    }
    Forbid(block);
    Drop(block_.exchange(block));
  }

  // The kept block if it holds `length` bytes and not over twice as many, cleared; else null.
  void* Take(size_t length) {
    BlockHeader* block = block_.exchange(nullptr);
    if (block == nullptr) return nullptr;
    if (block->bytes < length || block->bytes / 2 > length) {
      BlockHeader* none = nullptr;
      if (!block_.compare_exchange_strong(none, block)) Drop(block);
      return nullptr;
    }
    Allow(block);
    std::memset(block + 1, 0, length - sizeof(BlockHeader));
    return block + 1;
  }

 private:
  static void Drop(BlockHeader* block) {
    if (block == nullptr) return;
    Allow(block);
    Unmap(block);
  }

  std::atomic<BlockHeader*> block_{nullptr};
  std::atomic<size_t> most_{kMostKept};
};

KeptMapping kept;

// A mapping that begins on a large page, so that the system can back all of it with such pages.
void* MapLargePages(size_t bytes) {
  if (void* block = kept.Take(bytes)) return block;
  const size_t length = (bytes + kLargePage - 1) / kLargePage * kLargePage;
  const size_t reserved = length + kLargePage;
  void* raw = mmap(nullptr, reserved, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (raw == MAP_FAILED) return nullptr;
  auto* first = static_cast<uint8_t*>(raw);
  const size_t before = (kLargePage - reinterpret_cast<uintptr_t>(raw) % kLargePage) % kLargePage;
  if (before > 0) munmap(first, before);
  munmap(first + before + length, reserved - before - length);
  // Advice only: where large pages are off, small ones serve.
  madvise(first + before, length, MADV_HUGEPAGE);
  return PlaceBlock(first + before, length);
}
#endif

}  // namespace

void* AllocateBlock(size_t bytes) {
  const size_t withHeader = bytes + sizeof(BlockHeader) + kBlockAlignment;
  if (withHeader < bytes) return nullptr;
#if defined(__linux__)
  // Below one large page a mapping would waste more than it saves.
  if (withHeader >= kLargePage) return MapLargePages(withHeader);
#endif
  void* base = std::calloc(withHeader, 1);
  return base == nullptr ? nullptr : PlaceBlock(base, 0);
}

void ReleaseBlock(void* block) {
  if (block == nullptr) return;
  BlockHeader* header = static_cast<BlockHeader*>(block) - 1;
#if defined(__linux__)
  if (header->bytes > 0) {
    kept.Keep(header);
    return;
  }
#endif
  std::free(header->base);
}

size_t LimitKeptBytes([[maybe_unused]] size_t bytes) {
#if defined(__linux__)
  return kept.Limit(bytes);
#else
  return 0;
#endif
}

void TrimKeptBlock() {
#if defined(__linux__)
  kept.Trim();
#endif
}

}  // namespace imgbuf
