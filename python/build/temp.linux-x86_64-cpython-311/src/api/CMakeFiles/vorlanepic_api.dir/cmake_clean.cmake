file(REMOVE_RECURSE
  "../../lib/libvorlanepic_api.a"
  "../../lib/libvorlanepic_api.pdb"
  "CMakeFiles/vorlanepic_api.dir/bar_angle_service.cpp.o"
  "CMakeFiles/vorlanepic_api.dir/bar_angle_service.cpp.o.d"
  "CMakeFiles/vorlanepic_api.dir/block_service.cpp.o"
  "CMakeFiles/vorlanepic_api.dir/block_service.cpp.o.d"
  "CMakeFiles/vorlanepic_api.dir/deskew_crop_service.cpp.o"
  "CMakeFiles/vorlanepic_api.dir/deskew_crop_service.cpp.o.d"
  "CMakeFiles/vorlanepic_api.dir/line_deskew_service.cpp.o"
  "CMakeFiles/vorlanepic_api.dir/line_deskew_service.cpp.o.d"
  "CMakeFiles/vorlanepic_api.dir/pruned_rotation_service.cpp.o"
  "CMakeFiles/vorlanepic_api.dir/pruned_rotation_service.cpp.o.d"
  "CMakeFiles/vorlanepic_api.dir/service_call.cpp.o"
  "CMakeFiles/vorlanepic_api.dir/service_call.cpp.o.d"
)

# Per-language clean rules from dependency scanning.
foreach(lang CXX)
  include(CMakeFiles/vorlanepic_api.dir/cmake_clean_${lang}.cmake OPTIONAL)
endforeach()
