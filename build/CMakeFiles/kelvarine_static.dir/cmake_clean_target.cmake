file(REMOVE_RECURSE
  "libkelvarine_static.a"
)
