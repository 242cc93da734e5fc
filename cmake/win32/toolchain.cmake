# 32-bit Windows, cross-built with mingw-w64 (Debian: g++-mingw-w64-i686-posix).
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR i686)
set(CMAKE_C_COMPILER i686-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER i686-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER i686-w64-mingw32-windres)
set(VORLANEPIC_DLLTOOL i686-w64-mingw32-dlltool)
set(VORLANEPIC_OBJDUMP i686-w64-mingw32-objdump)

# Hosts align the stack to 4 bytes only: every function that needs more aligns it for itself.
set(target_flags "-mstackrealign")
set(CMAKE_C_FLAGS_INIT "${target_flags}")
set(CMAKE_CXX_FLAGS_INIT "${target_flags}")

# The compiler's and the thread runtime go into each file, so that nothing but the system's own
# libraries has to be there.
set(link_flags "-static -static-libgcc -static-libstdc++ -Wl,--nxcompat,--dynamicbase,--no-insert-timestamp")
set(CMAKE_EXE_LINKER_FLAGS_INIT "${link_flags}")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "${link_flags}")
set(CMAKE_EXE_LINKER_FLAGS_RELEASE_INIT "-s")
set(CMAKE_SHARED_LINKER_FLAGS_RELEASE_INIT "-s")

set(CMAKE_FIND_ROOT_PATH /usr/i686-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# Programs of the build run under Wine.
set(VORLANEPIC_WINE_PREFIX ${CMAKE_BINARY_DIR}/wine)
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/run-wine ${VORLANEPIC_WINE_PREFIX})
