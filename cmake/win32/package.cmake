# The target package-win32 or package-win64: one archive with what a host needs.
set(package_name vorlanepic-${PROJECT_VERSION}-${VORLANEPIC_WINDOWS})
set(package_dir ${CMAKE_BINARY_DIR}/package/${package_name})
set(package_file ${CMAKE_BINARY_DIR}/${package_name}.zip)
math(EXPR bits "8 * ${CMAKE_SIZEOF_VOID_P}")
configure_file(${PROJECT_SOURCE_DIR}/docs/windows-readme.txt ${PROJECT_BINARY_DIR}/README.txt @ONLY)
add_custom_target(package-${VORLANEPIC_WINDOWS}
  COMMAND ${CMAKE_COMMAND} -E rm -rf ${package_dir} ${package_file}
  COMMAND ${CMAKE_COMMAND} -E make_directory
          ${package_dir}/bin ${package_dir}/lib ${package_dir}/include ${package_dir}/examples
          ${package_dir}/docs
  COMMAND ${CMAKE_COMMAND} -E copy $<TARGET_FILE:vorlanepic> $<TARGET_FILE:imgbuf>
          $<TARGET_FILE:vorlane_library> ${package_dir}/bin
  COMMAND ${CMAKE_COMMAND} -E copy $<TARGET_LINKER_FILE:vorlanepic> $<TARGET_LINKER_FILE:imgbuf>
          $<TARGET_LINKER_FILE:vorlane_library> ${package_dir}/lib
  COMMAND ${CMAKE_COMMAND} -E copy_directory ${PROJECT_SOURCE_DIR}/include ${package_dir}/include
  COMMAND ${CMAKE_COMMAND} -E copy
          ${PROJECT_SOURCE_DIR}/examples/straighten_page.c
          ${PROJECT_SOURCE_DIR}/examples/detect_page.c
          ${PROJECT_SOURCE_DIR}/examples/read_sheet.c ${package_dir}/examples
  COMMAND ${CMAKE_COMMAND} -E copy
          ${PROJECT_SOURCE_DIR}/docs/sample-profile.ini
          ${PROJECT_SOURCE_DIR}/docs/hosts-guide.md
          ${PROJECT_SOURCE_DIR}/docs/engine-guide.md
          ${PROJECT_SOURCE_DIR}/docs/limits.md ${package_dir}/docs
  COMMAND ${CMAKE_COMMAND} -E copy ${PROJECT_BINARY_DIR}/README.txt ${package_dir}
  COMMAND ${CMAKE_COMMAND} -E chdir ${CMAKE_BINARY_DIR}/package
          ${CMAKE_COMMAND} -E tar cf ${package_file} --format=zip ${package_name}
  DEPENDS vorlanepic imgbuf vorlane_library
  COMMENT "Packing ${package_file}"
  VERBATIM)
