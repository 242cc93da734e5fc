file(REMOVE_RECURSE
  "CMakeFiles/vorlane_api.dir/apply.cpp.o"
  "CMakeFiles/vorlane_api.dir/apply.cpp.o.d"
  "CMakeFiles/vorlane_api.dir/context.cpp.o"
  "CMakeFiles/vorlane_api.dir/context.cpp.o.d"
  "CMakeFiles/vorlane_api.dir/detect.cpp.o"
  "CMakeFiles/vorlane_api.dir/detect.cpp.o.d"
  "CMakeFiles/vorlane_api.dir/finding.cpp.o"
  "CMakeFiles/vorlane_api.dir/finding.cpp.o.d"
  "CMakeFiles/vorlane_api.dir/records.cpp.o"
  "CMakeFiles/vorlane_api.dir/records.cpp.o.d"
  "CMakeFiles/vorlane_api.dir/words.cpp.o"
  "CMakeFiles/vorlane_api.dir/words.cpp.o.d"
)

# Per-language clean rules from dependency scanning.
foreach(lang CXX)
  include(CMakeFiles/vorlane_api.dir/cmake_clean_${lang}.cmake OPTIONAL)
endforeach()
