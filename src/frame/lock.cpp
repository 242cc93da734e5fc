#include "frame/lock.h"

#if defined(_WIN32)

#include <windows.h>

namespace vorlanepic::frame {
namespace {

static_assert(sizeof(SRWLOCK) == sizeof(void*));

SRWLOCK* Native(void** state) { return reinterpret_cast<SRWLOCK*>(state); }

}  // namespace

void Lock::lock() noexcept { AcquireSRWLockExclusive(Native(&state_)); }
void Lock::unlock() noexcept { ReleaseSRWLockExclusive(Native(&state_)); }

}  // namespace vorlanepic::frame

#endif
