# vorlane-compare, ours and the peers in turn; built where OpenCV and Leptonica are installed.
find_package(PkgConfig)
if(PkgConfig_FOUND)
  pkg_check_modules(LEPTONICA IMPORTED_TARGET lept)
endif()
# Debian's core and imgproc packages come without CMake and pkg-config files.
find_path(OPENCV_INCLUDE_DIR opencv2/imgproc.hpp PATH_SUFFIXES opencv4)
find_library(OPENCV_CORE opencv_core)
find_library(OPENCV_IMGPROC opencv_imgproc)
find_library(OPENCV_IMGCODECS opencv_imgcodecs)

if(NOT LEPTONICA_FOUND OR NOT OPENCV_INCLUDE_DIR OR NOT OPENCV_CORE
   OR NOT OPENCV_IMGPROC OR NOT OPENCV_IMGCODECS OR NOT VORLANEPIC_BUILD_COMMAND)
  message(STATUS "OpenCV or Leptonica is missing: vorlane-compare is not built")
  return()
endif()

add_executable(vorlane-compare
  side_by_side.cpp contest.cpp peak_memory.cpp
  file_straighteners.cpp straighten_ours.cpp straighten_engine.cpp straighten_opencv.cpp straighten_leptonica.cpp
  label_ours.cpp label_peers.cpp)
target_include_directories(vorlane-compare SYSTEM PRIVATE ${OPENCV_INCLUDE_DIR})
target_link_libraries(vorlane-compare PRIVATE
  vorlanepic_api imgbuf Vorlane::vorlane vorlanepic_samples vorlanepic_options
  PkgConfig::LEPTONICA vorlane_files ${OPENCV_IMGCODECS} ${OPENCV_IMGPROC} ${OPENCV_CORE})
