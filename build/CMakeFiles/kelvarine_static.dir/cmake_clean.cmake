file(REMOVE_RECURSE
  "libkelvarine_static.a"
  "libkelvarine_static.pdb"
)

# Per-language clean rules from dependency scanning.
foreach(lang CXX)
  include(CMakeFiles/kelvarine_static.dir/cmake_clean_${lang}.cmake OPTIONAL)
endforeach()
