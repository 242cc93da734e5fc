# Packages by CPack: DEB with one package for each part, and TGZ with everything, which can be unpacked
# anywhere. The preset `packages` builds what Debian's packages are made of.
set(CPACK_PACKAGE_NAME vorlanepic)
set(CPACK_PACKAGE_VENDOR "VorlanePic")
set(CPACK_PACKAGE_CONTACT "VorlanePic maintainers <maintainers@vorlanepic.example>" CACHE STRING
    "Who answers for the packages: name <address>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "") # every package has its own
set(CPACK_PACKAGE_FILE_NAME vorlanepic-${PROJECT_VERSION}-linux-${CMAKE_SYSTEM_PROCESSOR})
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/packages)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_SOURCE_GENERATOR "")
set(CPACK_GENERATOR TGZ)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "${CPACK_PACKAGE_CONTACT}")
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

set(release_name unstable)
execute_process(COMMAND date -R -u -r ${PROJECT_SOURCE_DIR}/CHANGELOG.md
  OUTPUT_VARIABLE date OUTPUT_STRIP_TRAILING_WHITESPACE)
if(DEFINED ENV{SOURCE_DATE_EPOCH})
  execute_process(COMMAND date -R -u -d @$ENV{SOURCE_DATE_EPOCH}
    OUTPUT_VARIABLE date OUTPUT_STRIP_TRAILING_WHITESPACE)
endif()
set(debian_dir ${PROJECT_BINARY_DIR}/debian)
configure_file(packaging/debian/changelog.in ${debian_dir}/changelog @ONLY)
configure_file(packaging/debian/copyright.in ${debian_dir}/copyright @ONLY)
add_custom_command(OUTPUT ${debian_dir}/changelog.gz
  COMMAND gzip -9nkf ${debian_dir}/changelog
  DEPENDS ${debian_dir}/changelog VERBATIM)
add_custom_target(debian_changelog ALL DEPENDS ${debian_dir}/changelog.gz)

set(all_components "")

# vorlanepic_package(COMPONENT PACKAGE SECTION SUMMARY DESCRIPTION [CARRIES...])
#   CARRIES   Debian packages whose headers were compiled in: their notices come along
macro(vorlanepic_package component package section summary description)
  cmake_parse_arguments(arg "" "" "CARRIES" ${ARGN})
  string(TOUPPER ${component} upper)
  list(APPEND all_components ${component})
  set(CPACK_DEBIAN_${upper}_PACKAGE_NAME ${package})
  set(CPACK_DEBIAN_${upper}_PACKAGE_SECTION ${section})
  set(CPACK_COMPONENT_${upper}_DESCRIPTION "${summary}\n${description}")
  file(READ ${debian_dir}/copyright notices)
  foreach(other IN LISTS arg_CARRIES)
    set(notice_file /usr/share/doc/${other}/copyright)
    if(EXISTS ${notice_file})
      file(READ ${notice_file} notice)
      string(APPEND notices "\nParts of ${other} are compiled in:\n\n${notice}")
    endif()
  endforeach()
  file(CONFIGURE OUTPUT ${debian_dir}/${package}/copyright CONTENT "@notices@" @ONLY)
  if(VORLANEPIC_IS_FOR_SYSTEM)
    install(FILES ${debian_dir}/${package}/copyright ${debian_dir}/changelog.gz
      DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${package} COMPONENT ${component})
  endif()
endmacro()

vorlanepic_package(imgbuf libimgbuf1 libs "page images in memory"
  "Pixel blocks and device-independent images as libvorlanepic exchanges them
with hosts.")
vorlanepic_package(vorlanepic libvorlanepic1 libs "straightens and trims scanned pages (library)"
  "Nineteen C functions in four services: pruned rotation, deskew and crop by
parameters or profile, line-guided deskew of forms, and mark-sheet blocks and
bar angle.")
vorlanepic_package(vorlane libvorlane0 libs "finds how scanned pages lie and sets them upright"
  "The page engine: it looks at a page in memory for the sides of the paper and
the direction of its print, says how sure it is and why, and makes the upright
page, on any number of threads.")
vorlanepic_package(vorlanepic_dev libvorlanepic-dev libdevel
  "straightens and trims scanned pages (development)"
  "Headers, pkg-config file, CMake package and manual page of libvorlanepic and
of its image library.")
vorlanepic_package(vorlane_dev libvorlane-dev libdevel
  "finds how scanned pages lie (development)"
  "Header, pkg-config file, CMake package and manual page of libvorlane.")
foreach(component IN ITEMS IMGBUF VORLANEPIC VORLANE)
  set(CPACK_DEBIAN_${component}_PACKAGE_CONTROL_EXTRA
    ${PROJECT_SOURCE_DIR}/packaging/debian/library/triggers)
endforeach()
set(CPACK_COMPONENT_VORLANEPIC_DEPENDS imgbuf)
set(CPACK_COMPONENT_VORLANEPIC_DEV_DEPENDS vorlanepic imgbuf)
set(CPACK_COMPONENT_VORLANE_DEV_DEPENDS vorlane)
if(VORLANEPIC_BUILD_COMMAND)
  vorlanepic_package(command vorlane graphics "straightens, crops and measures scanned pages"
    "The command finds the page in each picture of a file or folder, turns it
upright and cuts it out, says how sure it is and why, and leaves a page as it
is where it is not. It takes TIFF, PNG, JPEG, BMP, PNM and scanned PDF, works
on all cores and goes on where it was broken off."
    CARRIES libcli11-dev nlohmann-json3-dev)
  set(CPACK_DEBIAN_COMMAND_PACKAGE_RECOMMENDS poppler-utils)
endif()
if(VORLANEPIC_HAS_PYTHON)
  vorlanepic_package(python python3-vorlane python "straightens scanned pages in numpy arrays"
    "The page engine for Python: detect, apply and straighten for arrays of greys,
colours or bits, and the blocks of mark sheets."
    CARRIES pybind11-dev)
  set(CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS
    "${VORLANEPIC_PYTHON_RANGE}, python3-numpy")
  set(CPACK_COMPONENT_PYTHON_DEPENDS vorlane vorlanepic)
  set(CPACK_DEBIAN_PYTHON_PACKAGE_CONTROL_EXTRA
    ${PROJECT_SOURCE_DIR}/packaging/debian/python3-vorlane/postinst
    ${PROJECT_SOURCE_DIR}/packaging/debian/python3-vorlane/prerm)
endif()
set(CPACK_COMPONENTS_ALL ${all_components})
include(CPack)
