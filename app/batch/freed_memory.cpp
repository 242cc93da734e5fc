#include "app/batch/freed_memory.h"

#include <cstdlib>

#if defined(__GLIBC__)
#include <malloc.h>
#endif

namespace vorlane::batch {

void KeepFreedMemory() {
#if defined(__GLIBC__)
  constexpr int kMegabyte = 1 << 20;
  (void)::mallopt(M_MMAP_THRESHOLD, 32 * kMegabyte);
  (void)::mallopt(M_TRIM_THRESHOLD, 64 * kMegabyte);
#endif
}

}  // namespace vorlane::batch
