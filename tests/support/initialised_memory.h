// What the memory sanitizer is asked beyond what it looks at by itself.
#pragma once

#include <cstddef>

#if defined(__has_feature)
#if __has_feature(memory_sanitizer)
#define VORLANEPIC_HAS_MEMORY_SANITIZER
#include <sanitizer/msan_interface.h>
#endif
#endif

namespace vorlanepic::testing {

// Ends the program when a byte was never written, in builds with the memory sanitizer.
inline void RequireInitialised([[maybe_unused]] const void* memory, [[maybe_unused]] size_t bytes) {
#if defined(VORLANEPIC_HAS_MEMORY_SANITIZER)
  __msan_check_mem_is_initialized(memory, bytes);
#endif
}

}  // namespace vorlanepic::testing
