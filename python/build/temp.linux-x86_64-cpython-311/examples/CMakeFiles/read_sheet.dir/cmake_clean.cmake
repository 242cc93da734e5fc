file(REMOVE_RECURSE
  "../bin/read_sheet"
  "../bin/read_sheet.pdb"
  "CMakeFiles/read_sheet.dir/read_sheet.c.o"
  "CMakeFiles/read_sheet.dir/read_sheet.c.o.d"
)

# Per-language clean rules from dependency scanning.
foreach(lang C)
  include(CMakeFiles/read_sheet.dir/cmake_clean_${lang}.cmake OPTIONAL)
endforeach()
