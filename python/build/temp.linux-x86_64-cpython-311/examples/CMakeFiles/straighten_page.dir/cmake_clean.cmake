file(REMOVE_RECURSE
  "../bin/straighten_page"
  "../bin/straighten_page.pdb"
  "CMakeFiles/straighten_page.dir/straighten_page.c.o"
  "CMakeFiles/straighten_page.dir/straighten_page.c.o.d"
)

# Per-language clean rules from dependency scanning.
foreach(lang C)
  include(CMakeFiles/straighten_page.dir/cmake_clean_${lang}.cmake OPTIONAL)
endforeach()
