# How every target of the project is compiled; link vorlanepic_options PRIVATE.
add_library(vorlanepic_options INTERFACE)
target_compile_options(vorlanepic_options INTERFACE
  -Wall -Wextra -Wconversion -Wshadow
  # Results are the same on every machine: no fused multiply-add, doubles as written.
  -ffp-contract=off)

# All vector code there is is for x86, and takes SSE2 for granted.
set(VORLANEPIC_X86 OFF)
if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|AMD64|x86|i[3-6]86)$")
  set(VORLANEPIC_X86 ${VORLANEPIC_VECTOR_CODE})
  if(CMAKE_SIZEOF_VOID_P EQUAL 4)
    # Every double is a 64-bit double at each step, as on 64-bit targets.
    target_compile_options(vorlanepic_options INTERFACE -msse2 -mfpmath=sse)
  endif()
endif()
if(VORLANEPIC_X86)
  # For every target, because headers of the rooms hold vector code too.
  target_compile_definitions(vorlanepic_options INTERFACE VORLANEPIC_X86)
endif()

if(VORLANEPIC_SANITIZE)
  target_compile_options(vorlanepic_options INTERFACE
    -fsanitize=${VORLANEPIC_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer
    # Instrumented code takes minutes to compile at higher levels and with more than line numbers;
    # where runs are counted by the thousand a second it pays.
    $<IF:$<BOOL:${VORLANEPIC_BUILD_FUZZ}>,-O2,-O1> -g1)
  if(VORLANEPIC_BUILD_FUZZ)
    # Comparisons of pixels tell the fuzzer nothing and took half of its time; those of readers of
    # files do, and their targets set VORLANEPIC_TRACES_COMPARISONS.
    target_compile_options(vorlanepic_options INTERFACE
      $<$<NOT:$<BOOL:$<TARGET_PROPERTY:VORLANEPIC_TRACES_COMPARISONS>>>:-fno-sanitize-coverage=trace-cmp>)
  endif()
  target_link_options(vorlanepic_options INTERFACE -fsanitize=${VORLANEPIC_SANITIZE})
  if(VORLANEPIC_SANITIZE STREQUAL "memory")
    # The C++ library's own instances of its templates are not instrumented; ours are.
    target_compile_definitions(vorlanepic_options INTERFACE _GLIBCXX_EXTERN_TEMPLATE=0)
  endif()
endif()
