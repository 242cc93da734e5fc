# Unpacks the archive (PACKAGE) in WORK, builds a host there by the command of its read-me (COMPILER)
# and runs it with the packed libraries.
file(REMOVE_RECURSE ${WORK})
file(ARCHIVE_EXTRACT INPUT ${PACKAGE} DESTINATION ${WORK})
file(GLOB root ${WORK}/vorlanepic-*-win*)
foreach(name README.txt docs/hosts-guide.md docs/sample-profile.ini include/vorlanepic/imgbuf.h)
  if(NOT EXISTS ${root}/${name})
    message(FATAL_ERROR "the package lacks ${name}")
  endif()
endforeach()
function(check_host name expected)
  execute_process(
    COMMAND ${COMPILER} -std=c99 -Iinclude examples/${name}.c -o bin/${name}.exe -Llib ${ARGN}
    WORKING_DIRECTORY ${root} COMMAND_ERROR_IS_FATAL ANY)
  execute_process(COMMAND ${EMULATOR} ${root}/bin/${name}.exe
    OUTPUT_VARIABLE output COMMAND_ERROR_IS_FATAL ANY)
  if(NOT output MATCHES "${expected}")
    message(FATAL_ERROR "${name}: ${output}")
  endif()
endfunction()
check_host(straighten_page "a page of 2[78][0-9] x 3[56][0-9] pixels" -lvorlanepic -limgbuf)
check_host(detect_page "a page of 2[78][0-9] x 3[56][0-9] pixels" -lvorlane)
