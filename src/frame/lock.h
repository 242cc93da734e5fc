// A lock that can be had at any time: taking it asks for no memory and never fails.
#pragma once

#if !defined(_WIN32)
#include <mutex>
#endif

namespace vorlanepic::frame {

#if defined(_WIN32)

// For std::lock_guard. The mutex of mingw's standard library takes memory from the heap when it is
// first locked, and throws when there is none.
class Lock {
 public:
  void lock() noexcept;
  void unlock() noexcept;

 private:
  void* state_ = nullptr;  // an SRWLOCK, free
};

#else

using Lock = std::mutex;

#endif

}  // namespace vorlanepic::frame
