# 32-bit Windows (Debian: g++-mingw-w64-i686-posix).
set(CMAKE_SYSTEM_PROCESSOR i686)
set(VORLANEPIC_WINDOWS win32)
set(VORLANEPIC_MINGW i686-w64-mingw32)
# Hosts align the stack to 4 bytes only: every function that needs more aligns it for itself.
set(target_flags "-mstackrealign")
include(${CMAKE_CURRENT_LIST_DIR}/mingw.cmake)
