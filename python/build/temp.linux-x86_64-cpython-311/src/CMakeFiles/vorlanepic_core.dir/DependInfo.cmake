
# Consider dependencies only in project.
set(CMAKE_DEPENDS_IN_PROJECT_ONLY OFF)

# The set of languages for which implicit dependencies are needed:
set(CMAKE_DEPENDS_LANGUAGES
  )

# The set of dependency files which are needed:
set(CMAKE_DEPENDS_DEPENDENCY_FILES
  "/work/wt/python/src/analysis/border_line.cpp" "src/CMakeFiles/vorlanepic_core.dir/analysis/border_line.cpp.o" "gcc" "src/CMakeFiles/vorlanepic_core.dir/analysis/border_line.cpp.o.d"
  "/work/wt/python/src/analysis/border_scan.cpp" "src/CMakeFiles/vorlanepic_core.dir/analysis/border_scan.cpp.o" "gcc" "src/CMakeFiles/vorlanepic_core.dir/analysis/border_scan.cpp.o.d"
  "/work/wt/python/src/analysis/column_walks.cpp" "src/CMakeFiles/vorlanepic_core.dir/analysis/column_walks.cpp.o" "gcc" "src/CMakeFiles/vorlanepic_core.dir/analysis/column_walks.cpp.o.d"
  "/work/wt/python/src/analysis/corner_solver.cpp" "src/CMakeFiles/vorlanepic_core.dir/analysis/corner_solver.cpp.o" "gcc" "src/CMakeFiles/vorlanepic_core.dir/analysis/corner_solver.cpp.o.d"
  "/work/wt/python/src/analysis/document_band.cpp" "src/CMakeFiles/vorlanepic_core.dir/analysis/document_band.cpp.o" "gcc" "src/CMakeFiles/vorlanepic_core.dir/analysis/document_band.cpp.o.d"
  "/work/wt/python/src/analysis/edge_alignment.cpp" "src/CMakeFiles/vorlanepic_core.dir/analysis/edge_alignment.cpp.o" "gcc" "src/CMakeFiles/vorlanepic_core.dir/analysis/edge_alignment.cpp.o.d"
  "/work/wt/python/src/analysis/edge_lines.cpp" "src/CMakeFiles/vorlanepic_core.dir/analysis/edge_lines.cpp.o" "gcc" "src/CMakeFiles/vorlanepic_core.dir/analysis/edge_lines.cpp.o.d"
  "/work/wt/python/src/analysis/line_relations.cpp" "src/CMakeFiles/vorlanepic_core.dir/analysis/line_relations.cpp.o" "gcc" "src/CMakeFiles/vorlanepic_core.dir/analysis/line_relations.cpp.o.d"
  "/work/wt/python/src/analysis/row_walks.cpp" "src/CMakeFiles/vorlanepic_core.dir/analysis/row_walks.cpp.o" "gcc" "src/CMakeFiles/vorlanepic_core.dir/analysis/row_walks.cpp.o.d"
  "/work/wt/python/src/analysis/segment_selection.cpp" "src/CMakeFiles/vorlanepic_core.dir/analysis/segment_selection.cpp.o" "gcc" "src/CMakeFiles/vorlanepic_core.dir/analysis/segment_selection.cpp.o.d"
  "/work/wt/python/src/analysis/side_trace.cpp" "src/CMakeFiles/vorlanepic_core.dir/analysis/side_trace.cpp.o" "gcc" "src/CMakeFiles/vorlanepic_core.dir/analysis/side_trace.cpp.o.d"
  "/work/wt/python/src/analysis/threshold.cpp" "src/CMakeFiles/vorlanepic_core.dir/analysis/threshold.cpp.o" "gcc" "src/CMakeFiles/vorlanepic_core.dir/analysis/threshold.cpp.o.d"
  "/work/wt/python/src/deskew/border_directions.cpp" "src/CMakeFiles/vorlanepic_core.dir/deskew/border_directions.cpp.o" "gcc" "src/CMakeFiles/vorlanepic_core.dir/deskew/border_directions.cpp.o.d"
  "/work/wt/python/src/deskew/border_tracing.cpp" "src/CMakeFiles/vorlanepic_core.dir/deskew/border_tracing.cpp.o" "gcc" "src/CMakeFiles/vorlanepic_core.dir/deskew/border_tracing.cpp.o.d"
  "/work/wt/python/src/deskew/bright_lines_sse2.cpp" "src/CMakeFiles/vorlanepic_core.dir/deskew/bright_lines_sse2.cpp.o" "gcc" "src/CMakeFiles/vorlanepic_core.dir/deskew/bright_lines_sse2.cpp.o.d"
  "/work/wt/python/src/deskew/content_bounds.cpp" "src/CMakeFiles/vorlanepic_core.dir/deskew/content_bounds.cpp.o" "gcc" "src/CMakeFiles/vorlanepic_core.dir/deskew/content_bounds.cpp.o.d"
  "/work/wt/python/src/deskew/deskew_crop.cpp" "src/CMakeFiles/vorlanepic_core.dir/deskew/deskew_crop.cpp.o" "gcc" "src/CMakeFiles/vorlanepic_core.dir/deskew/deskew_crop.cpp.o.d"
  "/work/wt/python/src/deskew/deskew_settings.cpp" "src/CMakeFiles/vorlanepic_core.dir/deskew/deskew_settings.cpp.o" "gcc" "src/CMakeFiles/vorlanepic_core.dir/deskew/deskew_settings.cpp.o.d"
  "/work/wt/python/src/deskew/dib_set.cpp" "src/CMakeFiles/vorlanepic_core.dir/deskew/dib_set.cpp.o" "gcc" "src/CMakeFiles/vorlanepic_core.dir/deskew/dib_set.cpp.o.d"
  "/work/wt/python/src/deskew/image_region.cpp" "src/CMakeFiles/vorlanepic_core.dir/deskew/image_region.cpp.o" "gcc" "src/CMakeFiles/vorlanepic_core.dir/deskew/image_region.cpp.o.d"
  "/work/wt/python/src/deskew/line_deskew.cpp" "src/CMakeFiles/vorlanepic_core.dir/deskew/line_deskew.cpp.o" "gcc" "src/CMakeFiles/vorlanepic_core.dir/deskew/line_deskew.cpp.o.d"
  "/work/wt/python/src/deskew/pruned_rotation.cpp" "src/CMakeFiles/vorlanepic_core.dir/deskew/pruned_rotation.cpp.o" "gcc" "src/CMakeFiles/vorlanepic_core.dir/deskew/pruned_rotation.cpp.o.d"
  "/work/wt/python/src/deskew/skew_vote.cpp" "src/CMakeFiles/vorlanepic_core.dir/deskew/skew_vote.cpp.o" "gcc" "src/CMakeFiles/vorlanepic_core.dir/deskew/skew_vote.cpp.o.d"
  "/work/wt/python/src/deskew/turn_and_cut.cpp" "src/CMakeFiles/vorlanepic_core.dir/deskew/turn_and_cut.cpp.o" "gcc" "src/CMakeFiles/vorlanepic_core.dir/deskew/turn_and_cut.cpp.o.d"
  "/work/wt/python/src/frame/angle_series.cpp" "src/CMakeFiles/vorlanepic_core.dir/frame/angle_series.cpp.o" "gcc" "src/CMakeFiles/vorlanepic_core.dir/frame/angle_series.cpp.o.d"
  "/work/wt/python/src/frame/lock.cpp" "src/CMakeFiles/vorlanepic_core.dir/frame/lock.cpp.o" "gcc" "src/CMakeFiles/vorlanepic_core.dir/frame/lock.cpp.o.d"
  "/work/wt/python/src/frame/profile_line.cpp" "src/CMakeFiles/vorlanepic_core.dir/frame/profile_line.cpp.o" "gcc" "src/CMakeFiles/vorlanepic_core.dir/frame/profile_line.cpp.o.d"
  "/work/wt/python/src/frame/profile_reader.cpp" "src/CMakeFiles/vorlanepic_core.dir/frame/profile_reader.cpp.o" "gcc" "src/CMakeFiles/vorlanepic_core.dir/frame/profile_reader.cpp.o.d"
  "/work/wt/python/src/frame/record_layout.cpp" "src/CMakeFiles/vorlanepic_core.dir/frame/record_layout.cpp.o" "gcc" "src/CMakeFiles/vorlanepic_core.dir/frame/record_layout.cpp.o.d"
  "/work/wt/python/src/frame/trigonometry.cpp" "src/CMakeFiles/vorlanepic_core.dir/frame/trigonometry.cpp.o" "gcc" "src/CMakeFiles/vorlanepic_core.dir/frame/trigonometry.cpp.o.d"
  "/work/wt/python/src/omr/bar_segments.cpp" "src/CMakeFiles/vorlanepic_core.dir/omr/bar_segments.cpp.o" "gcc" "src/CMakeFiles/vorlanepic_core.dir/omr/bar_segments.cpp.o.d"
  "/work/wt/python/src/omr/block_growth.cpp" "src/CMakeFiles/vorlanepic_core.dir/omr/block_growth.cpp.o" "gcc" "src/CMakeFiles/vorlanepic_core.dir/omr/block_growth.cpp.o.d"
  "/work/wt/python/src/omr/block_hand_back.cpp" "src/CMakeFiles/vorlanepic_core.dir/omr/block_hand_back.cpp.o" "gcc" "src/CMakeFiles/vorlanepic_core.dir/omr/block_hand_back.cpp.o.d"
  "/work/wt/python/src/omr/block_marking.cpp" "src/CMakeFiles/vorlanepic_core.dir/omr/block_marking.cpp.o" "gcc" "src/CMakeFiles/vorlanepic_core.dir/omr/block_marking.cpp.o.d"
  "/work/wt/python/src/omr/block_outline.cpp" "src/CMakeFiles/vorlanepic_core.dir/omr/block_outline.cpp.o" "gcc" "src/CMakeFiles/vorlanepic_core.dir/omr/block_outline.cpp.o.d"
  "/work/wt/python/src/omr/block_set.cpp" "src/CMakeFiles/vorlanepic_core.dir/omr/block_set.cpp.o" "gcc" "src/CMakeFiles/vorlanepic_core.dir/omr/block_set.cpp.o.d"
  "/work/wt/python/src/omr/dib_to_gray.cpp" "src/CMakeFiles/vorlanepic_core.dir/omr/dib_to_gray.cpp.o" "gcc" "src/CMakeFiles/vorlanepic_core.dir/omr/dib_to_gray.cpp.o.d"
  "/work/wt/python/src/omr/edge_fitting.cpp" "src/CMakeFiles/vorlanepic_core.dir/omr/edge_fitting.cpp.o" "gcc" "src/CMakeFiles/vorlanepic_core.dir/omr/edge_fitting.cpp.o.d"
  "/work/wt/python/src/omr/mark_sheet_angle.cpp" "src/CMakeFiles/vorlanepic_core.dir/omr/mark_sheet_angle.cpp.o" "gcc" "src/CMakeFiles/vorlanepic_core.dir/omr/mark_sheet_angle.cpp.o.d"
  "/work/wt/python/src/omr/reference_bar.cpp" "src/CMakeFiles/vorlanepic_core.dir/omr/reference_bar.cpp.o" "gcc" "src/CMakeFiles/vorlanepic_core.dir/omr/reference_bar.cpp.o.d"
  "/work/wt/python/src/omr/row_runs.cpp" "src/CMakeFiles/vorlanepic_core.dir/omr/row_runs.cpp.o" "gcc" "src/CMakeFiles/vorlanepic_core.dir/omr/row_runs.cpp.o.d"
  "/work/wt/python/src/omr/scan_area.cpp" "src/CMakeFiles/vorlanepic_core.dir/omr/scan_area.cpp.o" "gcc" "src/CMakeFiles/vorlanepic_core.dir/omr/scan_area.cpp.o.d"
  "/work/wt/python/src/omr/selection_order.cpp" "src/CMakeFiles/vorlanepic_core.dir/omr/selection_order.cpp.o" "gcc" "src/CMakeFiles/vorlanepic_core.dir/omr/selection_order.cpp.o.d"
  "/work/wt/python/src/omr/sheet_area.cpp" "src/CMakeFiles/vorlanepic_core.dir/omr/sheet_area.cpp.o" "gcc" "src/CMakeFiles/vorlanepic_core.dir/omr/sheet_area.cpp.o.d"
  "/work/wt/python/src/rotate/kernels.cpp" "src/CMakeFiles/vorlanepic_core.dir/rotate/kernels.cpp.o" "gcc" "src/CMakeFiles/vorlanepic_core.dir/rotate/kernels.cpp.o.d"
  "/work/wt/python/src/rotate/kernels_avx2.cpp" "src/CMakeFiles/vorlanepic_core.dir/rotate/kernels_avx2.cpp.o" "gcc" "src/CMakeFiles/vorlanepic_core.dir/rotate/kernels_avx2.cpp.o.d"
  "/work/wt/python/src/rotate/kernels_avx2_colour.cpp" "src/CMakeFiles/vorlanepic_core.dir/rotate/kernels_avx2_colour.cpp.o" "gcc" "src/CMakeFiles/vorlanepic_core.dir/rotate/kernels_avx2_colour.cpp.o.d"
  "/work/wt/python/src/rotate/kernels_avx512.cpp" "src/CMakeFiles/vorlanepic_core.dir/rotate/kernels_avx512.cpp.o" "gcc" "src/CMakeFiles/vorlanepic_core.dir/rotate/kernels_avx512.cpp.o.d"
  "/work/wt/python/src/rotate/kernels_avx512_nearest.cpp" "src/CMakeFiles/vorlanepic_core.dir/rotate/kernels_avx512_nearest.cpp.o" "gcc" "src/CMakeFiles/vorlanepic_core.dir/rotate/kernels_avx512_nearest.cpp.o.d"
  "/work/wt/python/src/rotate/kernels_scalar.cpp" "src/CMakeFiles/vorlanepic_core.dir/rotate/kernels_scalar.cpp.o" "gcc" "src/CMakeFiles/vorlanepic_core.dir/rotate/kernels_scalar.cpp.o.d"
  "/work/wt/python/src/rotate/kernels_sse2.cpp" "src/CMakeFiles/vorlanepic_core.dir/rotate/kernels_sse2.cpp.o" "gcc" "src/CMakeFiles/vorlanepic_core.dir/rotate/kernels_sse2.cpp.o.d"
  "/work/wt/python/src/rotate/pixel_rule.cpp" "src/CMakeFiles/vorlanepic_core.dir/rotate/pixel_rule.cpp.o" "gcc" "src/CMakeFiles/vorlanepic_core.dir/rotate/pixel_rule.cpp.o.d"
  "/work/wt/python/src/rotate/plain_rotation.cpp" "src/CMakeFiles/vorlanepic_core.dir/rotate/plain_rotation.cpp.o" "gcc" "src/CMakeFiles/vorlanepic_core.dir/rotate/plain_rotation.cpp.o.d"
  "/work/wt/python/src/rotate/region_index.cpp" "src/CMakeFiles/vorlanepic_core.dir/rotate/region_index.cpp.o" "gcc" "src/CMakeFiles/vorlanepic_core.dir/rotate/region_index.cpp.o.d"
  "/work/wt/python/src/rotate/rotate_image.cpp" "src/CMakeFiles/vorlanepic_core.dir/rotate/rotate_image.cpp.o" "gcc" "src/CMakeFiles/vorlanepic_core.dir/rotate/rotate_image.cpp.o.d"
  "/work/wt/python/src/rotate/rotation.cpp" "src/CMakeFiles/vorlanepic_core.dir/rotate/rotation.cpp.o" "gcc" "src/CMakeFiles/vorlanepic_core.dir/rotate/rotation.cpp.o.d"
  "/work/wt/python/src/rotate/step_tables.cpp" "src/CMakeFiles/vorlanepic_core.dir/rotate/step_tables.cpp.o" "gcc" "src/CMakeFiles/vorlanepic_core.dir/rotate/step_tables.cpp.o.d"
  "/work/wt/python/src/rotate/tiled_rotation.cpp" "src/CMakeFiles/vorlanepic_core.dir/rotate/tiled_rotation.cpp.o" "gcc" "src/CMakeFiles/vorlanepic_core.dir/rotate/tiled_rotation.cpp.o.d"
  )

# Targets to which this target links.
set(CMAKE_TARGET_LINKED_INFO_FILES
  )

# Fortran module output directory.
set(CMAKE_Fortran_TARGET_MODULE_DIR "")
