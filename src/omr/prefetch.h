// Hints to the processor about memory that is read soon.
#pragma once

#include <cstddef>
#include <cstdint>

#if defined(__SSE2__)
#include <xmmintrin.h>
#endif

namespace vorlanepic {

inline constexpr size_t kCacheLine = 64;

// Has the memory `ahead` bytes behind `from` brought near. It need not be memory at all.
inline void Prefetch([[maybe_unused]] const void* from, [[maybe_unused]] size_t ahead) {
#if defined(__SSE2__)
  const auto address = reinterpret_cast<uintptr_t>(from) + ahead;
  _mm_prefetch(reinterpret_cast<const char*>(address), _MM_HINT_T0);
#endif
}

}  // namespace vorlanepic
