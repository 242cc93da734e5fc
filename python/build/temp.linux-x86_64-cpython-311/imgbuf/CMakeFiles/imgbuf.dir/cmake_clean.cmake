file(REMOVE_RECURSE
  "../lib/libimgbuf.pdb"
  "../lib/libimgbuf.so"
  "../lib/libimgbuf.so.1"
  "CMakeFiles/imgbuf.dir/block_memory.cpp.o"
  "CMakeFiles/imgbuf.dir/block_memory.cpp.o.d"
  "CMakeFiles/imgbuf.dir/imgbuf.cpp.o"
  "CMakeFiles/imgbuf.dir/imgbuf.cpp.o.d"
)

# Per-language clean rules from dependency scanning.
foreach(lang CXX)
  include(CMakeFiles/imgbuf.dir/cmake_clean_${lang}.cmake OPTIONAL)
endforeach()
