# GoogleTest for the cross-built tests, from the sources that Debian's package googletest brings.
set(VORLANEPIC_GOOGLETEST_SOURCES /usr/src/googletest CACHE PATH "GoogleTest's sources")
set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
add_subdirectory(${VORLANEPIC_GOOGLETEST_SOURCES} ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL)
# Its own warnings are none of ours.
foreach(library gtest gtest_main gmock gmock_main)
  set_target_properties(${library} PROPERTIES COMPILE_WARNING_AS_ERROR OFF)
endforeach()
