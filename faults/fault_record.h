// What the fault library and those who steer it share: plain data that may lie in a file mapped by
// both. faults.py knows its layout.
#pragma once

#include <atomic>
#include <cstdint>

namespace vorlane::faults {

enum class Call : int32_t {
  kMalloc,  // aligned_alloc, posix_memalign and memalign as well
  kCalloc,
  kRealloc,
  kMap,
  kThread,
  kOpen,
  kWrite,
  kSync,
  kRename  // giving a name by a link, too
};
inline constexpr int32_t kCalls = 9;
inline constexpr const char* kCallNames[kCalls] = {
    "malloc", "calloc", "realloc", "mmap", "pthread_create", "open", "write", "fsync", "rename"};

enum class Mode : int32_t {
  kIdle,       // nothing is counted
  kCount,      // and all succeeds
  kOnly,       // the n-th call of a kind fails
  kFromThere,  // the n-th and all later ones
  kLarger      // every request for more than n bytes, of heap or mapping
};

struct FaultRecord {
  std::atomic<Mode> mode;
  std::atomic<Call> call;        // the kind that fails
  std::atomic<int64_t> n;        // counted from 0
  std::atomic<int64_t> struck;   // calls that were made to fail
  std::atomic<int64_t> alive;    // heap blocks made and not freed, counted also while idle
  std::atomic<int64_t> largest;  // bytes of the largest request
  std::atomic<int64_t> seen[kCalls];
};

}  // namespace vorlane::faults

// Where the program at hand finds its record. The fault library maps the file that the environment
// variable VORLANE_FAULTS names; without it the record is the process's own.
extern "C" vorlane::faults::FaultRecord* vorlane_fault_record();
