file(REMOVE_RECURSE
  "../lib/libvorlanepic.pdb"
  "../lib/libvorlanepic.so"
  "../lib/libvorlanepic.so.1"
  "CMakeFiles/vorlanepic.dir/empty.cpp.o"
  "CMakeFiles/vorlanepic.dir/empty.cpp.o.d"
)

# Per-language clean rules from dependency scanning.
foreach(lang CXX)
  include(CMakeFiles/vorlanepic.dir/cmake_clean_${lang}.cmake OPTIONAL)
endforeach()
