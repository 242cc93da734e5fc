#include "support/failing_heap.h"

#include <atomic>
#include <cstddef>

#if defined(_WIN32)
#include <windows.h>
#else
#include <thread>
#endif

// NOLINTBEGIN(bugprone-reserved-identifier): the names that the linker's --wrap asks for
extern "C" {
void* __real_malloc(size_t bytes);
void* __real_calloc(size_t count, size_t bytes);
void* __real_realloc(void* block, size_t bytes);
}
// NOLINTEND(bugprone-reserved-identifier)

namespace vorlanepic::testing {
namespace {

// Names the running thread without asking for memory. On Windows the standard thread id and the
// first use of a thread_local variable both do, in a thread that has just begun.
#if defined(_WIN32)
using ThreadId = DWORD;
ThreadId CurrentThread() { return GetCurrentThreadId(); }
#else
using ThreadId = std::thread::id;
ThreadId CurrentThread() { return std::this_thread::get_id(); }
#endif

// Requests of other threads, workers and the test framework, are left alone.
std::atomic<bool> armed{false};
std::atomic<ThreadId> owner{};
int32_t requestsLeft = -1;
bool failed = false;

bool Strikes() {
  if (!armed || CurrentThread() != owner) return false;
  if (requestsLeft < 0 || requestsLeft-- > 0) return false;
  failed = true;
  return true;
}

}  // namespace

FailingHeap::FailingHeap(int32_t n) {
  owner = CurrentThread();
  requestsLeft = n;
  failed = false;
  armed = true;
}

FailingHeap::~FailingHeap() { armed = false; }

bool FailingHeap::hasFailed() const { return failed; }

}  // namespace vorlanepic::testing

using vorlanepic::testing::Strikes;

// NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" {
void* __wrap_malloc(size_t bytes) { return Strikes() ? nullptr : __real_malloc(bytes); }
void* __wrap_calloc(size_t count, size_t bytes) {
  return Strikes() ? nullptr : __real_calloc(count, bytes);
}
void* __wrap_realloc(void* block, size_t bytes) {
  return Strikes() ? nullptr : __real_realloc(block, bytes);
}
}
// NOLINTEND(bugprone-reserved-identifier)
