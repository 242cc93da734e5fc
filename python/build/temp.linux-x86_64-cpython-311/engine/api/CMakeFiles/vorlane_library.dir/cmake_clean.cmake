file(REMOVE_RECURSE
  "../../lib/libvorlane.pdb"
  "../../lib/libvorlane.so"
  "../../lib/libvorlane.so.0"
  "CMakeFiles/vorlane_library.dir/__/__/imgbuf/block_memory.cpp.o"
  "CMakeFiles/vorlane_library.dir/__/__/imgbuf/block_memory.cpp.o.d"
  "CMakeFiles/vorlane_library.dir/__/__/imgbuf/imgbuf.cpp.o"
  "CMakeFiles/vorlane_library.dir/__/__/imgbuf/imgbuf.cpp.o.d"
)

# Per-language clean rules from dependency scanning.
foreach(lang CXX)
  include(CMakeFiles/vorlane_library.dir/cmake_clean_${lang}.cmake OPTIONAL)
endforeach()
