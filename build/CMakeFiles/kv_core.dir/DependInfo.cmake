
# Consider dependencies only in project.
set(CMAKE_DEPENDS_IN_PROJECT_ONLY OFF)

# The set of languages for which implicit dependencies are needed:
set(CMAKE_DEPENDS_LANGUAGES
  )

# The set of dependency files which are needed:
set(CMAKE_DEPENDS_DEPENDENCY_FILES
  "/work/main/effects/Effect_Base.cpp" "CMakeFiles/kv_core.dir/effects/Effect_Base.cpp.o" "gcc" "CMakeFiles/kv_core.dir/effects/Effect_Base.cpp.o.d"
  "/work/main/effects/Gray.cpp" "CMakeFiles/kv_core.dir/effects/Gray.cpp.o" "gcc" "CMakeFiles/kv_core.dir/effects/Gray.cpp.o.d"
  "/work/main/effects/Kelvarine.cpp" "CMakeFiles/kv_core.dir/effects/Kelvarine.cpp.o" "gcc" "CMakeFiles/kv_core.dir/effects/Kelvarine.cpp.o.d"
  "/work/main/effects/XDebug.cpp" "CMakeFiles/kv_core.dir/effects/XDebug.cpp.o" "gcc" "CMakeFiles/kv_core.dir/effects/XDebug.cpp.o.d"
  "/work/main/primitives/frame/dispatch.cpp" "CMakeFiles/kv_core.dir/primitives/frame/dispatch.cpp.o" "gcc" "CMakeFiles/kv_core.dir/primitives/frame/dispatch.cpp.o.d"
  "/work/main/primitives/frame/memory.cpp" "CMakeFiles/kv_core.dir/primitives/frame/memory.cpp.o" "gcc" "CMakeFiles/kv_core.dir/primitives/frame/memory.cpp.o.d"
  )

# Targets to which this target links.
set(CMAKE_TARGET_LINKED_INFO_FILES
  )

# Fortran module output directory.
set(CMAKE_Fortran_TARGET_MODULE_DIR "")
