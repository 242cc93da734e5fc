
# Consider dependencies only in project.
set(CMAKE_DEPENDS_IN_PROJECT_ONLY OFF)

# The set of languages for which implicit dependencies are needed:
set(CMAKE_DEPENDS_LANGUAGES
  )

# The set of dependency files which are needed:
set(CMAKE_DEPENDS_DEPENDENCY_FILES
  "/work/wt/python/src/api/bar_angle_service.cpp" "src/api/CMakeFiles/vorlanepic_api.dir/bar_angle_service.cpp.o" "gcc" "src/api/CMakeFiles/vorlanepic_api.dir/bar_angle_service.cpp.o.d"
  "/work/wt/python/src/api/block_service.cpp" "src/api/CMakeFiles/vorlanepic_api.dir/block_service.cpp.o" "gcc" "src/api/CMakeFiles/vorlanepic_api.dir/block_service.cpp.o.d"
  "/work/wt/python/src/api/deskew_crop_service.cpp" "src/api/CMakeFiles/vorlanepic_api.dir/deskew_crop_service.cpp.o" "gcc" "src/api/CMakeFiles/vorlanepic_api.dir/deskew_crop_service.cpp.o.d"
  "/work/wt/python/src/api/line_deskew_service.cpp" "src/api/CMakeFiles/vorlanepic_api.dir/line_deskew_service.cpp.o" "gcc" "src/api/CMakeFiles/vorlanepic_api.dir/line_deskew_service.cpp.o.d"
  "/work/wt/python/src/api/pruned_rotation_service.cpp" "src/api/CMakeFiles/vorlanepic_api.dir/pruned_rotation_service.cpp.o" "gcc" "src/api/CMakeFiles/vorlanepic_api.dir/pruned_rotation_service.cpp.o.d"
  "/work/wt/python/src/api/service_call.cpp" "src/api/CMakeFiles/vorlanepic_api.dir/service_call.cpp.o" "gcc" "src/api/CMakeFiles/vorlanepic_api.dir/service_call.cpp.o.d"
  )

# Targets to which this target links.
set(CMAKE_TARGET_LINKED_INFO_FILES
  "/work/wt/python/python/build/temp.linux-x86_64-cpython-311/src/CMakeFiles/vorlanepic_core.dir/DependInfo.cmake"
  )

# Fortran module output directory.
set(CMAKE_Fortran_TARGET_MODULE_DIR "")
