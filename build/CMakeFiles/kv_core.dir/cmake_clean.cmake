file(REMOVE_RECURSE
  "CMakeFiles/kv_core.dir/effects/Effect_Base.cpp.o"
  "CMakeFiles/kv_core.dir/effects/Effect_Base.cpp.o.d"
  "CMakeFiles/kv_core.dir/effects/Gray.cpp.o"
  "CMakeFiles/kv_core.dir/effects/Gray.cpp.o.d"
  "CMakeFiles/kv_core.dir/effects/Kelvarine.cpp.o"
  "CMakeFiles/kv_core.dir/effects/Kelvarine.cpp.o.d"
  "CMakeFiles/kv_core.dir/effects/XDebug.cpp.o"
  "CMakeFiles/kv_core.dir/effects/XDebug.cpp.o.d"
  "CMakeFiles/kv_core.dir/primitives/frame/dispatch.cpp.o"
  "CMakeFiles/kv_core.dir/primitives/frame/dispatch.cpp.o.d"
  "CMakeFiles/kv_core.dir/primitives/frame/memory.cpp.o"
  "CMakeFiles/kv_core.dir/primitives/frame/memory.cpp.o.d"
)

# Per-language clean rules from dependency scanning.
foreach(lang CXX)
  include(CMakeFiles/kv_core.dir/cmake_clean_${lang}.cmake OPTIONAL)
endforeach()
