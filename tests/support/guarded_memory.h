// Memory between pages that must not be touched, so that every build, and vector code that no
// sanitizer sees through, stops at the first byte too many.
#pragma once

#include <cstddef>
#include <cstdint>
#include <new>
#include <vector>

namespace vorlanepic::testing {

// Zeroed storage of `bytes` bytes, at least 1: its last byte touches an inaccessible page, and
// another such page lies less than a page before its first one. What is between that page and the
// first byte is poisoned for the address sanitizer. Aligned as `bytes` is. Null when there is no
// memory; asks the system and not the heap.
void* MapGuarded(size_t bytes);

// Returns what MapGuarded gave for as many bytes.
void UnmapGuarded(void* block, size_t bytes);

template <typename T>
struct GuardedAllocator {
  using value_type = T;

  GuardedAllocator() = default;
  template <typename Other>
  GuardedAllocator(const GuardedAllocator<Other>& /*other*/) {}

  T* allocate(size_t count) {
    void* block = MapGuarded(count * sizeof(T));
    if (block == nullptr) throw std::bad_alloc();
    return static_cast<T*>(block);
  }
  void deallocate(T* block, size_t count) { UnmapGuarded(block, count * sizeof(T)); }
  bool operator==(const GuardedAllocator&) const = default;
};

// Made with its size, it ends at the guard.
using GuardedBytes = std::vector<uint8_t, GuardedAllocator<uint8_t>>;

}  // namespace vorlanepic::testing
