// Lets a chosen heap request of the library under test fail. The linker routes malloc, calloc,
// realloc and free of the test program through here.
#pragma once

#include <cstdint>

namespace vorlanepic::testing {

// Counts the heap requests made by the thread that made it while it lives, and lets one fail. One
// at a time.
class FailingHeap {
 public:
  // The n-th request from now on, counted from 0, returns null; below 0 none does.
  explicit FailingHeap(int32_t n);
  ~FailingHeap();
  FailingHeap(const FailingHeap&) = delete;
  FailingHeap& operator=(const FailingHeap&) = delete;

  bool hasFailed() const;  // whether the request came
};

// Runs `operation`, a callable, once for every heap request it makes, with that request failing,
// and then once undisturbed. `check` is called after each failing run.
template <typename Operation, typename Check>
void ForEachHeapFailure(Operation operation, Check check) {
  for (int32_t n = 0;; ++n) {
    bool failed = false;
    {
      const FailingHeap heap(n);
      operation();
      failed = heap.hasFailed();
    }
    if (!failed) return;
    check(n);
  }
}

}  // namespace vorlanepic::testing
