# Libraries, headers, pkg-config files and CMake packages: VorlanePic with its image library, and
# Vorlane, the page engine.
include(CMakePackageConfigHelpers)

install(TARGETS imgbuf vorlanepic vorlanepic_headers
  EXPORT VorlanePicTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(DIRECTORY include/vorlanepic include/vorlane DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/VorlanePic)
install(EXPORT VorlanePicTargets NAMESPACE VorlanePic:: DESTINATION ${package_dir})
configure_package_config_file(cmake/VorlanePicConfig.cmake.in
  ${PROJECT_BINARY_DIR}/VorlanePicConfig.cmake INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/VorlanePicConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/VorlanePicConfig.cmake
              ${PROJECT_BINARY_DIR}/VorlanePicConfigVersion.cmake
  DESTINATION ${package_dir})

install(TARGETS vorlane_library
  EXPORT VorlaneTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
get_target_property(vorlane_version vorlane_library VERSION)
set(vorlane_package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/Vorlane)
install(EXPORT VorlaneTargets NAMESPACE Vorlane:: DESTINATION ${vorlane_package_dir})
configure_package_config_file(cmake/VorlaneConfig.cmake.in
  ${PROJECT_BINARY_DIR}/VorlaneConfig.cmake INSTALL_DESTINATION ${vorlane_package_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/VorlaneConfigVersion.cmake
  VERSION ${vorlane_version} COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/VorlaneConfig.cmake
              ${PROJECT_BINARY_DIR}/VorlaneConfigVersion.cmake
  DESTINATION ${vorlane_package_dir})

# From the folder of the pkg-config files back to the prefix, so that an installation can be moved.
file(RELATIVE_PATH pc_prefix /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
foreach(library imgbuf vorlanepic vorlane)
  configure_file(cmake/${library}.pc.in ${PROJECT_BINARY_DIR}/${library}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${library}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endforeach()
