# Libraries, headers, a pkg-config file and a CMake package for both libraries.
include(CMakePackageConfigHelpers)

install(TARGETS imgbuf vorlanepic vorlanepic_headers
  EXPORT VorlanePicTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(DIRECTORY include/vorlanepic DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/VorlanePic)
install(EXPORT VorlanePicTargets NAMESPACE VorlanePic:: DESTINATION ${package_dir})
configure_package_config_file(cmake/VorlanePicConfig.cmake.in
  ${PROJECT_BINARY_DIR}/VorlanePicConfig.cmake INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/VorlanePicConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/VorlanePicConfig.cmake
              ${PROJECT_BINARY_DIR}/VorlanePicConfigVersion.cmake
  DESTINATION ${package_dir})

# From the folder of the pkg-config files back to the prefix, so that an installation can be moved.
file(RELATIVE_PATH pc_prefix /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
foreach(library imgbuf vorlanepic)
  configure_file(cmake/${library}.pc.in ${PROJECT_BINARY_DIR}/${library}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${library}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endforeach()
