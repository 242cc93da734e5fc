
# Consider dependencies only in project.
set(CMAKE_DEPENDS_IN_PROJECT_ONLY OFF)

# The set of languages for which implicit dependencies are needed:
set(CMAKE_DEPENDS_LANGUAGES
  )

# The set of dependency files which are needed:
set(CMAKE_DEPENDS_DEPENDENCY_FILES
  "/work/wt/python/python/core/blocks.cpp" "python/CMakeFiles/vorlane_python.dir/core/blocks.cpp.o" "gcc" "python/CMakeFiles/vorlane_python.dir/core/blocks.cpp.o.d"
  "/work/wt/python/python/core/codes.cpp" "python/CMakeFiles/vorlane_python.dir/core/codes.cpp.o" "gcc" "python/CMakeFiles/vorlane_python.dir/core/codes.cpp.o.d"
  "/work/wt/python/python/core/engine.cpp" "python/CMakeFiles/vorlane_python.dir/core/engine.cpp.o" "gcc" "python/CMakeFiles/vorlane_python.dir/core/engine.cpp.o.d"
  "/work/wt/python/python/core/finding_fields.cpp" "python/CMakeFiles/vorlane_python.dir/core/finding_fields.cpp.o" "gcc" "python/CMakeFiles/vorlane_python.dir/core/finding_fields.cpp.o.d"
  "/work/wt/python/python/core/module.cpp" "python/CMakeFiles/vorlane_python.dir/core/module.cpp.o" "gcc" "python/CMakeFiles/vorlane_python.dir/core/module.cpp.o.d"
  "/work/wt/python/python/core/options.cpp" "python/CMakeFiles/vorlane_python.dir/core/options.cpp.o" "gcc" "python/CMakeFiles/vorlane_python.dir/core/options.cpp.o.d"
  "/work/wt/python/python/core/page_memory.cpp" "python/CMakeFiles/vorlane_python.dir/core/page_memory.cpp.o" "gcc" "python/CMakeFiles/vorlane_python.dir/core/page_memory.cpp.o.d"
  )

# Targets to which this target links.
set(CMAKE_TARGET_LINKED_INFO_FILES
  "/work/wt/python/python/build/temp.linux-x86_64-cpython-311/engine/api/CMakeFiles/vorlane_library.dir/DependInfo.cmake"
  "/work/wt/python/python/build/temp.linux-x86_64-cpython-311/src/CMakeFiles/vorlanepic.dir/DependInfo.cmake"
  "/work/wt/python/python/build/temp.linux-x86_64-cpython-311/imgbuf/CMakeFiles/imgbuf.dir/DependInfo.cmake"
  )

# Fortran module output directory.
set(CMAKE_Fortran_TARGET_MODULE_DIR "")
