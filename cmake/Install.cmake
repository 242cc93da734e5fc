# Libraries, headers, pkg-config files and CMake packages: VorlanePic with its image library, and
# Vorlane, the page engine.
include(CMakePackageConfigHelpers)

# A library's files for programs are one component, those for compilers another.
function(vorlanepic_install_library target component development export)
  install(TARGETS ${target}
    EXPORT ${export}
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
      COMPONENT ${component} NAMELINK_COMPONENT ${development}
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT ${development}
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT ${component})
endfunction()

vorlanepic_install_library(imgbuf imgbuf vorlanepic_dev VorlanePicTargets)
vorlanepic_install_library(vorlanepic vorlanepic vorlanepic_dev VorlanePicTargets)
install(TARGETS vorlanepic_headers EXPORT VorlanePicTargets)
install(DIRECTORY include/vorlanepic DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT vorlanepic_dev)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/VorlanePic)
install(EXPORT VorlanePicTargets NAMESPACE VorlanePic:: DESTINATION ${package_dir}
  COMPONENT vorlanepic_dev)
configure_package_config_file(cmake/VorlanePicConfig.cmake.in
  ${PROJECT_BINARY_DIR}/VorlanePicConfig.cmake INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/VorlanePicConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/VorlanePicConfig.cmake
              ${PROJECT_BINARY_DIR}/VorlanePicConfigVersion.cmake
  DESTINATION ${package_dir} COMPONENT vorlanepic_dev)

vorlanepic_install_library(vorlane_library vorlane vorlane_dev VorlaneTargets)
install(DIRECTORY include/vorlane DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT vorlane_dev)
get_target_property(vorlane_version vorlane_library VERSION)
set(vorlane_package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/Vorlane)
install(EXPORT VorlaneTargets NAMESPACE Vorlane:: DESTINATION ${vorlane_package_dir}
  COMPONENT vorlane_dev)
configure_package_config_file(cmake/VorlaneConfig.cmake.in
  ${PROJECT_BINARY_DIR}/VorlaneConfig.cmake INSTALL_DESTINATION ${vorlane_package_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/VorlaneConfigVersion.cmake
  VERSION ${vorlane_version} COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/VorlaneConfig.cmake
              ${PROJECT_BINARY_DIR}/VorlaneConfigVersion.cmake
  DESTINATION ${vorlane_package_dir} COMPONENT vorlane_dev)

# From the folder of the pkg-config files back to the prefix, so that an installation can be moved.
file(RELATIVE_PATH pc_prefix /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
foreach(library imgbuf vorlanepic vorlane)
  configure_file(cmake/${library}.pc.in ${PROJECT_BINARY_DIR}/${library}.pc @ONLY)
endforeach()
install(FILES ${PROJECT_BINARY_DIR}/imgbuf.pc ${PROJECT_BINARY_DIR}/vorlanepic.pc
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT vorlanepic_dev)
install(FILES ${PROJECT_BINARY_DIR}/vorlane.pc
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT vorlane_dev)

vorlanepic_install_page(vorlanepic.3 vorlanepic_dev)
vorlanepic_install_page(vorlane.3 vorlane_dev)
