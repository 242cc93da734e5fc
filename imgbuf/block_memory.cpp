#include "block_memory.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>

#if defined(__linux__)
#include <sys/mman.h>

#include "frame/large_pages.h"
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

// A mapping that begins on a large page, so that the system can back all of it with such pages.
void* MapLargePages(size_t bytes) {
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
  const BlockHeader header = *(static_cast<BlockHeader*>(block) - 1);
#if defined(__linux__)
  if (header.bytes > 0) {
    munmap(header.base, header.bytes);
    return;
  }
#endif
  std::free(header.base);
}

}  // namespace imgbuf
