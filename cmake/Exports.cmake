# Gives a shared library the names of a module definition file and no others. Every name of the file
# stands on a line of its own, with its calling convention behind a semicolon: `cdecl`, or `stdcall`
# and the bytes of its arguments on 32-bit targets.

# vorlanepic_limit_exports(TARGET DEF_FILE)
function(vorlanepic_limit_exports target def_file)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${def_file})
  # Semicolons separate list items; another mark stands for them while the lines are a list.
  file(READ ${def_file} text)
  string(REPLACE ";" "|" text "${text}")
  string(REGEX MATCHALL "\n    [A-Za-z_]+ *\\| [a-z]+[ 0-9]*" lines "${text}")
  if(WIN32)
    vorlanepic_export_from_dll(${target} "${lines}")
  else()
    vorlanepic_export_from_shared_object(${target} "${lines}")
  endif()
endfunction()

function(vorlanepic_export_from_shared_object target lines)
  set(names "")
  foreach(line IN LISTS lines)
    string(REGEX REPLACE "\n    ([A-Za-z_]+).*" "    \\1;\n" line "${line}")
    string(APPEND names "${line}")
  endforeach()
  set(script ${CMAKE_CURRENT_BINARY_DIR}/${target}.map)
  file(WRITE ${script} "{\n  global:\n${names}  local:\n    *;\n};\n")
  target_link_options(${target} PRIVATE -Wl,--version-script=${script})
  # A sanitizer's own names may be left to the program that loads the library.
  if(NOT VORLANEPIC_SANITIZE)
    target_link_options(${target} PRIVATE -Wl,--no-undefined)
  endif()
  set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS ${script})
endfunction()

# The library's functions are decorated on 32-bit targets (_Name@24), its exported names are not, and
# the import library leads callers from the one to the other.
function(vorlanepic_export_from_dll target lines)
  if(CMAKE_SIZEOF_VOID_P EQUAL 4)
    list(TRANSFORM lines REPLACE "\n    ([A-Za-z_]+) *\\| stdcall ([0-9]+)" "    \\1@\\2\n")
  endif()
  list(TRANSFORM lines REPLACE "\n    ([A-Za-z_]+) *\\| .*" "    \\1\n")
  string(CONCAT names ${lines})
  set(decorated ${CMAKE_CURRENT_BINARY_DIR}/${target}.decorated.def)
  file(WRITE ${decorated} "EXPORTS\n${names}")
  target_sources(${target} PRIVATE ${decorated})
  target_link_options(${target} PRIVATE -Wl,--kill-at)
  set_target_properties(${target} PROPERTIES PREFIX "")
  # The linker's own import library would name undecorated functions.
  add_custom_command(TARGET ${target} POST_BUILD
    COMMAND ${VORLANEPIC_DLLTOOL} --kill-at --input-def ${decorated}
            --dllname $<TARGET_FILE_NAME:${target}>
            --output-lib $<TARGET_LINKER_FILE_NAME:${target}>
    WORKING_DIRECTORY $<TARGET_LINKER_FILE_DIR:${target}>
    VERBATIM)
endfunction()

# vorlanepic_describe(TARGET DESCRIPTION): the version resource of a Windows library; nothing
# elsewhere.
function(vorlanepic_describe target description)
  if(NOT WIN32)
    return()
  endif()
  set(resource ${CMAKE_CURRENT_BINARY_DIR}/${target}.rc)
  configure_file(${PROJECT_SOURCE_DIR}/cmake/win32/version.rc.in ${resource} @ONLY)
  # Apart from the library, whose compiler options mean nothing to the resource compiler.
  add_library(${target}_version OBJECT ${resource})
  target_sources(${target} PRIVATE $<TARGET_OBJECTS:${target}_version>)
endfunction()
