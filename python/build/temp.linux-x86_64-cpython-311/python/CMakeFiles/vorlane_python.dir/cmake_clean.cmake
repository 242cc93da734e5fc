file(REMOVE_RECURSE
  "CMakeFiles/vorlane_python.dir/core/blocks.cpp.o"
  "CMakeFiles/vorlane_python.dir/core/blocks.cpp.o.d"
  "CMakeFiles/vorlane_python.dir/core/codes.cpp.o"
  "CMakeFiles/vorlane_python.dir/core/codes.cpp.o.d"
  "CMakeFiles/vorlane_python.dir/core/engine.cpp.o"
  "CMakeFiles/vorlane_python.dir/core/engine.cpp.o.d"
  "CMakeFiles/vorlane_python.dir/core/finding_fields.cpp.o"
  "CMakeFiles/vorlane_python.dir/core/finding_fields.cpp.o.d"
  "CMakeFiles/vorlane_python.dir/core/module.cpp.o"
  "CMakeFiles/vorlane_python.dir/core/module.cpp.o.d"
  "CMakeFiles/vorlane_python.dir/core/options.cpp.o"
  "CMakeFiles/vorlane_python.dir/core/options.cpp.o.d"
  "CMakeFiles/vorlane_python.dir/core/page_memory.cpp.o"
  "CMakeFiles/vorlane_python.dir/core/page_memory.cpp.o.d"
  "vorlane/_core.cpython-311-x86_64-linux-gnu.so"
  "vorlane/_core.pdb"
)

# Per-language clean rules from dependency scanning.
foreach(lang CXX)
  include(CMakeFiles/vorlane_python.dir/cmake_clean_${lang}.cmake OPTIONAL)
endforeach()
