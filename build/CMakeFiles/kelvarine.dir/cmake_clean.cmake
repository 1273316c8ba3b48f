file(REMOVE_RECURSE
  "libkelvarine.pdb"
  "libkelvarine.so"
  "libkelvarine.so.1"
  "libkelvarine.so.1.0.0"
)

# Per-language clean rules from dependency scanning.
foreach(lang CXX)
  include(CMakeFiles/kelvarine.dir/cmake_clean_${lang}.cmake OPTIONAL)
endforeach()
