# How every target of the project is compiled; link vorlanepic_options PRIVATE.
add_library(vorlanepic_options INTERFACE)
target_compile_options(vorlanepic_options INTERFACE
  -Wall -Wextra -Wconversion -Wshadow -Werror
  # Results are the same on every machine: no fused multiply-add, doubles as written.
  -ffp-contract=off)

if(VORLANEPIC_SANITIZE)
  target_compile_options(vorlanepic_options INTERFACE
    -fsanitize=${VORLANEPIC_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer -g)
  target_link_options(vorlanepic_options INTERFACE -fsanitize=${VORLANEPIC_SANITIZE})
endif()
