#----------------------------------------------------------------
# Generated CMake target import file for configuration "Release".
#----------------------------------------------------------------

# Commands may need to know the format version.
set(CMAKE_IMPORT_FILE_VERSION 1)

# Import target "VorlanePic::imgbuf" for configuration "Release"
set_property(TARGET VorlanePic::imgbuf APPEND PROPERTY IMPORTED_CONFIGURATIONS RELEASE)
set_target_properties(VorlanePic::imgbuf PROPERTIES
  IMPORTED_LOCATION_RELEASE "${_IMPORT_PREFIX}/lib/libimgbuf.so.1"
  IMPORTED_SONAME_RELEASE "libimgbuf.so.1"
  )

list(APPEND _cmake_import_check_targets VorlanePic::imgbuf )
list(APPEND _cmake_import_check_files_for_VorlanePic::imgbuf "${_IMPORT_PREFIX}/lib/libimgbuf.so.1" )

# Import target "VorlanePic::vorlanepic" for configuration "Release"
set_property(TARGET VorlanePic::vorlanepic APPEND PROPERTY IMPORTED_CONFIGURATIONS RELEASE)
set_target_properties(VorlanePic::vorlanepic PROPERTIES
  IMPORTED_LOCATION_RELEASE "${_IMPORT_PREFIX}/lib/libvorlanepic.so.1"
  IMPORTED_SONAME_RELEASE "libvorlanepic.so.1"
  )

list(APPEND _cmake_import_check_targets VorlanePic::vorlanepic )
list(APPEND _cmake_import_check_files_for_VorlanePic::vorlanepic "${_IMPORT_PREFIX}/lib/libvorlanepic.so.1" )

# Commands beyond this point should not need to know the version.
set(CMAKE_IMPORT_FILE_VERSION)
