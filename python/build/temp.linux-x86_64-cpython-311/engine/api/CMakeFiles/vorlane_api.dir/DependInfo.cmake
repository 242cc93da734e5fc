
# Consider dependencies only in project.
set(CMAKE_DEPENDS_IN_PROJECT_ONLY OFF)

# The set of languages for which implicit dependencies are needed:
set(CMAKE_DEPENDS_LANGUAGES
  )

# The set of dependency files which are needed:
set(CMAKE_DEPENDS_DEPENDENCY_FILES
  "/work/wt/python/engine/api/apply.cpp" "engine/api/CMakeFiles/vorlane_api.dir/apply.cpp.o" "gcc" "engine/api/CMakeFiles/vorlane_api.dir/apply.cpp.o.d"
  "/work/wt/python/engine/api/context.cpp" "engine/api/CMakeFiles/vorlane_api.dir/context.cpp.o" "gcc" "engine/api/CMakeFiles/vorlane_api.dir/context.cpp.o.d"
  "/work/wt/python/engine/api/detect.cpp" "engine/api/CMakeFiles/vorlane_api.dir/detect.cpp.o" "gcc" "engine/api/CMakeFiles/vorlane_api.dir/detect.cpp.o.d"
  "/work/wt/python/engine/api/finding.cpp" "engine/api/CMakeFiles/vorlane_api.dir/finding.cpp.o" "gcc" "engine/api/CMakeFiles/vorlane_api.dir/finding.cpp.o.d"
  "/work/wt/python/engine/api/records.cpp" "engine/api/CMakeFiles/vorlane_api.dir/records.cpp.o" "gcc" "engine/api/CMakeFiles/vorlane_api.dir/records.cpp.o.d"
  "/work/wt/python/engine/api/words.cpp" "engine/api/CMakeFiles/vorlane_api.dir/words.cpp.o" "gcc" "engine/api/CMakeFiles/vorlane_api.dir/words.cpp.o.d"
  )

# Targets to which this target links.
set(CMAKE_TARGET_LINKED_INFO_FILES
  )

# Fortran module output directory.
set(CMAKE_Fortran_TARGET_MODULE_DIR "")
