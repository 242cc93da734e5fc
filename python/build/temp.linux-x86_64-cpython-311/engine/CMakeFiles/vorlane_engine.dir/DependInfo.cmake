
# Consider dependencies only in project.
set(CMAKE_DEPENDS_IN_PROJECT_ONLY OFF)

# The set of languages for which implicit dependencies are needed:
set(CMAKE_DEPENDS_LANGUAGES
  )

# The set of dependency files which are needed:
set(CMAKE_DEPENDS_DEPENDENCY_FILES
  "/work/wt/python/engine/apply/page_format.cpp" "engine/CMakeFiles/vorlane_engine.dir/apply/page_format.cpp.o" "gcc" "engine/CMakeFiles/vorlane_engine.dir/apply/page_format.cpp.o.d"
  "/work/wt/python/engine/apply/pixel_rows.cpp" "engine/CMakeFiles/vorlane_engine.dir/apply/pixel_rows.cpp.o" "gcc" "engine/CMakeFiles/vorlane_engine.dir/apply/pixel_rows.cpp.o.d"
  "/work/wt/python/engine/apply/result_geometry.cpp" "engine/CMakeFiles/vorlane_engine.dir/apply/result_geometry.cpp.o" "gcc" "engine/CMakeFiles/vorlane_engine.dir/apply/result_geometry.cpp.o.d"
  "/work/wt/python/engine/apply/turn_page.cpp" "engine/CMakeFiles/vorlane_engine.dir/apply/turn_page.cpp.o" "gcc" "engine/CMakeFiles/vorlane_engine.dir/apply/turn_page.cpp.o.d"
  "/work/wt/python/engine/evidence/border_traces.cpp" "engine/CMakeFiles/vorlane_engine.dir/evidence/border_traces.cpp.o" "gcc" "engine/CMakeFiles/vorlane_engine.dir/evidence/border_traces.cpp.o.d"
  "/work/wt/python/engine/evidence/half_plane.cpp" "engine/CMakeFiles/vorlane_engine.dir/evidence/half_plane.cpp.o" "gcc" "engine/CMakeFiles/vorlane_engine.dir/evidence/half_plane.cpp.o.d"
  "/work/wt/python/engine/evidence/ink.cpp" "engine/CMakeFiles/vorlane_engine.dir/evidence/ink.cpp.o" "gcc" "engine/CMakeFiles/vorlane_engine.dir/evidence/ink.cpp.o.d"
  "/work/wt/python/engine/evidence/inner_trace.cpp" "engine/CMakeFiles/vorlane_engine.dir/evidence/inner_trace.cpp.o" "gcc" "engine/CMakeFiles/vorlane_engine.dir/evidence/inner_trace.cpp.o.d"
  "/work/wt/python/engine/evidence/light_beyond.cpp" "engine/CMakeFiles/vorlane_engine.dir/evidence/light_beyond.cpp.o" "gcc" "engine/CMakeFiles/vorlane_engine.dir/evidence/light_beyond.cpp.o.d"
  "/work/wt/python/engine/evidence/page_levels.cpp" "engine/CMakeFiles/vorlane_engine.dir/evidence/page_levels.cpp.o" "gcc" "engine/CMakeFiles/vorlane_engine.dir/evidence/page_levels.cpp.o.d"
  "/work/wt/python/engine/evidence/paper_sides.cpp" "engine/CMakeFiles/vorlane_engine.dir/evidence/paper_sides.cpp.o" "gcc" "engine/CMakeFiles/vorlane_engine.dir/evidence/paper_sides.cpp.o.d"
  "/work/wt/python/engine/evidence/print_skew.cpp" "engine/CMakeFiles/vorlane_engine.dir/evidence/print_skew.cpp.o" "gcc" "engine/CMakeFiles/vorlane_engine.dir/evidence/print_skew.cpp.o.d"
  "/work/wt/python/engine/evidence/side_contrast.cpp" "engine/CMakeFiles/vorlane_engine.dir/evidence/side_contrast.cpp.o" "gcc" "engine/CMakeFiles/vorlane_engine.dir/evidence/side_contrast.cpp.o.d"
  "/work/wt/python/engine/evidence/side_line.cpp" "engine/CMakeFiles/vorlane_engine.dir/evidence/side_line.cpp.o" "gcc" "engine/CMakeFiles/vorlane_engine.dir/evidence/side_line.cpp.o.d"
  "/work/wt/python/engine/evidence/thresholds.cpp" "engine/CMakeFiles/vorlane_engine.dir/evidence/thresholds.cpp.o" "gcc" "engine/CMakeFiles/vorlane_engine.dir/evidence/thresholds.cpp.o.d"
  "/work/wt/python/engine/judge/cut.cpp" "engine/CMakeFiles/vorlane_engine.dir/judge/cut.cpp.o" "gcc" "engine/CMakeFiles/vorlane_engine.dir/judge/cut.cpp.o.d"
  "/work/wt/python/engine/judge/cut_geometry.cpp" "engine/CMakeFiles/vorlane_engine.dir/judge/cut_geometry.cpp.o" "gcc" "engine/CMakeFiles/vorlane_engine.dir/judge/cut_geometry.cpp.o.d"
  "/work/wt/python/engine/judge/decision.cpp" "engine/CMakeFiles/vorlane_engine.dir/judge/decision.cpp.o" "gcc" "engine/CMakeFiles/vorlane_engine.dir/judge/decision.cpp.o.d"
  "/work/wt/python/engine/judge/detect.cpp" "engine/CMakeFiles/vorlane_engine.dir/judge/detect.cpp.o" "gcc" "engine/CMakeFiles/vorlane_engine.dir/judge/detect.cpp.o.d"
  "/work/wt/python/engine/judge/reason_words.cpp" "engine/CMakeFiles/vorlane_engine.dir/judge/reason_words.cpp.o" "gcc" "engine/CMakeFiles/vorlane_engine.dir/judge/reason_words.cpp.o.d"
  )

# Targets to which this target links.
set(CMAKE_TARGET_LINKED_INFO_FILES
  "/work/wt/python/python/build/temp.linux-x86_64-cpython-311/src/CMakeFiles/vorlanepic_core.dir/DependInfo.cmake"
  )

# Fortran module output directory.
set(CMAKE_Fortran_TARGET_MODULE_DIR "")
