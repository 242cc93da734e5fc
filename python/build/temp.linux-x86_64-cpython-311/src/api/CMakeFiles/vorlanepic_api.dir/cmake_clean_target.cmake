file(REMOVE_RECURSE
  "../../lib/libvorlanepic_api.a"
)
