# 64-bit Windows (Debian: g++-mingw-w64-x86-64-posix).
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(VORLANEPIC_WINDOWS win64)
set(VORLANEPIC_MINGW x86_64-w64-mingw32)
# The compiler moves whole vectors of 32 and 64 bytes to and from a stack that is aligned to 16 only,
# as if it were aligned to their size; the assembler makes them moves that need no alignment.
set(target_flags "-Wa,-muse-unaligned-vector-move")
include(${CMAKE_CURRENT_LIST_DIR}/mingw.cmake)
