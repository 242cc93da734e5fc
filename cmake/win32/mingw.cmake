# Windows, cross-built with mingw-w64: what both of its targets share.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_C_COMPILER ${VORLANEPIC_MINGW}-gcc-posix)
set(CMAKE_CXX_COMPILER ${VORLANEPIC_MINGW}-g++-posix)
set(CMAKE_RC_COMPILER ${VORLANEPIC_MINGW}-windres)
set(VORLANEPIC_DLLTOOL ${VORLANEPIC_MINGW}-dlltool)
set(VORLANEPIC_OBJDUMP ${VORLANEPIC_MINGW}-objdump)

set(CMAKE_C_FLAGS_INIT "${target_flags}")
set(CMAKE_CXX_FLAGS_INIT "${target_flags}")

# The compiler's and the thread runtime go into each file, so that nothing but the system's own
# libraries has to be there.
set(link_flags "-static -static-libgcc -static-libstdc++ -Wl,--nxcompat,--dynamicbase,--no-insert-timestamp")
set(CMAKE_EXE_LINKER_FLAGS_INIT "${link_flags}")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "${link_flags}")
set(CMAKE_EXE_LINKER_FLAGS_RELEASE_INIT "-s")
set(CMAKE_SHARED_LINKER_FLAGS_RELEASE_INIT "-s")

set(CMAKE_FIND_ROOT_PATH /usr/${VORLANEPIC_MINGW})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# Programs of the build run under Wine.
set(VORLANEPIC_WINE_PREFIX ${CMAKE_BINARY_DIR}/wine)
set(CMAKE_CROSSCOMPILING_EMULATOR
  ${CMAKE_CURRENT_LIST_DIR}/run-wine ${VORLANEPIC_WINDOWS} ${VORLANEPIC_WINE_PREFIX})
