# GoogleTest for the cross-built tests, from the sources that Debian's package googletest brings.
set(VORLANEPIC_GOOGLETEST_SOURCES /usr/src/googletest CACHE PATH "GoogleTest's sources")
set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
add_subdirectory(${VORLANEPIC_GOOGLETEST_SOURCES} ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL)
