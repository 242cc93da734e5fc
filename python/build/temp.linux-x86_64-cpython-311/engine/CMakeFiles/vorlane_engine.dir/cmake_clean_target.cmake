file(REMOVE_RECURSE
  "../lib/libvorlane_engine.a"
)
