file(REMOVE_RECURSE
  "../bin/detect_page"
  "../bin/detect_page.pdb"
  "CMakeFiles/detect_page.dir/detect_page.c.o"
  "CMakeFiles/detect_page.dir/detect_page.c.o.d"
)

# Per-language clean rules from dependency scanning.
foreach(lang C)
  include(CMakeFiles/detect_page.dir/cmake_clean_${lang}.cmake OPTIONAL)
endforeach()
