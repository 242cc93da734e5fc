file(REMOVE_RECURSE
  "../lib/libvorlanepic_core.a"
)
