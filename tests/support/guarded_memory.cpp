#include "support/guarded_memory.h"

#if defined(_WIN32)
#include <windows.h>
#else
#include <unistd.h>

#include <sys/mman.h>
#endif

#if !defined(__SANITIZE_ADDRESS__) && defined(__has_feature)
#if __has_feature(address_sanitizer)
#define __SANITIZE_ADDRESS__
#endif
#endif
#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/asan_interface.h>
#else
#define ASAN_POISON_MEMORY_REGION(address, bytes)
#define ASAN_UNPOISON_MEMORY_REGION(address, bytes)
#endif

namespace vorlanepic::testing {
namespace {

#if defined(_WIN32)

size_t PageBytes() {
  SYSTEM_INFO system;
  GetSystemInfo(&system);
  return system.dwPageSize;
}

uint8_t* Reserve(size_t bytes) {
  return static_cast<uint8_t*>(VirtualAlloc(nullptr, bytes, MEM_RESERVE, PAGE_NOACCESS));
}

bool Open(uint8_t* first, size_t bytes) {
  return VirtualAlloc(first, bytes, MEM_COMMIT, PAGE_READWRITE) != nullptr;
}

void Release(uint8_t* first, size_t /*bytes*/) { VirtualFree(first, 0, MEM_RELEASE); }

#else

size_t PageBytes() { return static_cast<size_t>(sysconf(_SC_PAGESIZE)); }

uint8_t* Reserve(size_t bytes) {
  void* first = mmap(nullptr, bytes, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  return first == MAP_FAILED ? nullptr : static_cast<uint8_t*>(first);
}

bool Open(uint8_t* first, size_t bytes) {
  return mprotect(first, bytes, PROT_READ | PROT_WRITE) == 0;
}

void Release(uint8_t* first, size_t bytes) { munmap(first, bytes); }

#endif

// Whole pages: a guard, what is open, a guard.
struct Mapping {
  size_t page;
  size_t open;
  size_t slack;  // open bytes before the block

  explicit Mapping(size_t bytes)
      : page(PageBytes()), open((bytes + page - 1) / page * page), slack(open - bytes) {}
  size_t whole() const { return open + 2 * page; }
};

}  // namespace

void* MapGuarded(size_t bytes) {
  const Mapping mapping(bytes);
  uint8_t* guard = Reserve(mapping.whole());
  if (guard == nullptr) return nullptr;
  if (!Open(guard + mapping.page, mapping.open)) {
    Release(guard, mapping.whole());
    return nullptr;
  }
  ASAN_POISON_MEMORY_REGION(guard + mapping.page, mapping.slack);
  return guard + mapping.page + mapping.slack;
}

void UnmapGuarded(void* block, size_t bytes) {
  const Mapping mapping(bytes);
  uint8_t* guard = static_cast<uint8_t*>(block) - mapping.slack - mapping.page;
  ASAN_UNPOISON_MEMORY_REGION(guard + mapping.page, mapping.slack);
  Release(guard, mapping.whole());
}

}  // namespace vorlanepic::testing
