// Hints to the processor about memory that is read soon.
#pragma once

#include <cstddef>
#include <cstdint>

#if defined(__SSE2__)
#include <xmmintrin.h>
#endif

namespace vorlanepic::frame {

// Bytes that come near together.
inline constexpr ptrdiff_t kCacheLine = 64;

// What does nothing but prefetch has to be inlined: g++ takes a call of it for one without effect
// and drops it.
#define VORLANEPIC_PREFETCHES __attribute__((always_inline))

// Has the memory `ahead` bytes behind `from` brought near. It need not be memory at all.
VORLANEPIC_PREFETCHES inline void Prefetch([[maybe_unused]] const void* from,
                                           [[maybe_unused]] size_t ahead = 0) {
#if defined(__SSE2__)
  const auto address = reinterpret_cast<uintptr_t>(from) + ahead;
  _mm_prefetch(reinterpret_cast<const char*>(address), _MM_HINT_T0);
#endif
}

}  // namespace vorlanepic::frame
