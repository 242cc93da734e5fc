#include "support/failing_heap.h"

#include <cstddef>

extern "C" {
void* __real_malloc(size_t bytes);
void* __real_calloc(size_t count, size_t bytes);
void* __real_realloc(void* block, size_t bytes);
}

namespace vorlanepic::testing {
namespace {

// Per thread, so that workers and the test framework are left alone.
thread_local int32_t requestsLeft = -1;
thread_local bool failed = false;

bool Strikes() {
  if (requestsLeft < 0 || requestsLeft-- > 0) return false;
  failed = true;
  return true;
}

}  // namespace

FailingHeap::FailingHeap(int32_t n) {
  requestsLeft = n;
  failed = false;
}

FailingHeap::~FailingHeap() { requestsLeft = -1; }

bool FailingHeap::hasFailed() const { return failed; }

}  // namespace vorlanepic::testing

using vorlanepic::testing::Strikes;

// NOLINTBEGIN(bugprone-reserved-identifier): the names that the linker's --wrap asks for
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
