file(REMOVE_RECURSE
  "CMakeFiles/kv_prims_m7.dir/primitives/frame/allocators.cpp.o"
  "CMakeFiles/kv_prims_m7.dir/primitives/frame/allocators.cpp.o.d"
)

# Per-language clean rules from dependency scanning.
foreach(lang CXX)
  include(CMakeFiles/kv_prims_m7.dir/cmake_clean_${lang}.cmake OPTIONAL)
endforeach()
