
# Consider dependencies only in project.
set(CMAKE_DEPENDS_IN_PROJECT_ONLY OFF)

# The set of languages for which implicit dependencies are needed:
set(CMAKE_DEPENDS_LANGUAGES
  )

# The set of dependency files which are needed:
set(CMAKE_DEPENDS_DEPENDENCY_FILES
  "/work/wt/python/examples/straighten_page.c" "examples/CMakeFiles/straighten_page.dir/straighten_page.c.o" "gcc" "examples/CMakeFiles/straighten_page.dir/straighten_page.c.o.d"
  )

# Targets to which this target links.
set(CMAKE_TARGET_LINKED_INFO_FILES
  "/work/wt/python/python/build/temp.linux-x86_64-cpython-311/src/CMakeFiles/vorlanepic.dir/DependInfo.cmake"
  "/work/wt/python/python/build/temp.linux-x86_64-cpython-311/imgbuf/CMakeFiles/imgbuf.dir/DependInfo.cmake"
  )

# Fortran module output directory.
set(CMAKE_Fortran_TARGET_MODULE_DIR "")
