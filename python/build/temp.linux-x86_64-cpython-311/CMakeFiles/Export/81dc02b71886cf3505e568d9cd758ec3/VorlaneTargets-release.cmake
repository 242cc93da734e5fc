#----------------------------------------------------------------
# Generated CMake target import file for configuration "Release".
#----------------------------------------------------------------

# Commands may need to know the format version.
set(CMAKE_IMPORT_FILE_VERSION 1)

# Import target "Vorlane::vorlane" for configuration "Release"
set_property(TARGET Vorlane::vorlane APPEND PROPERTY IMPORTED_CONFIGURATIONS RELEASE)
set_target_properties(Vorlane::vorlane PROPERTIES
  IMPORTED_LOCATION_RELEASE "${_IMPORT_PREFIX}/lib/libvorlane.so.0"
  IMPORTED_SONAME_RELEASE "libvorlane.so.0"
  )

list(APPEND _cmake_import_check_targets Vorlane::vorlane )
list(APPEND _cmake_import_check_files_for_Vorlane::vorlane "${_IMPORT_PREFIX}/lib/libvorlane.so.0" )

# Commands beyond this point should not need to know the version.
set(CMAKE_IMPORT_FILE_VERSION)
