# cmake --install: the library with its SONAME links, the public headers, the
# kelvarine command, a pkg-config file and a package for find_package.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(KV_CMAKE_PACKAGE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/Kelvarine)

install(TARGETS kelvarine EXPORT KelvarineTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(FILES include/kelvarine.h include/kelvarine_prims.h include/kelvarine_prim_entries.h
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})

# The installed command finds the installed library beside it.
set_target_properties(kelvarine_cli PROPERTIES INSTALL_RPATH "$ORIGIN/../${CMAKE_INSTALL_LIBDIR}")
install(TARGETS kelvarine_cli RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})

# The pkg-config file finds the prefix from its own place, so the tree can be
# installed under any --prefix.
file(RELATIVE_PATH KV_PC_TO_PREFIX "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
configure_file(cmake/kelvarine.pc.in kelvarine.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/kelvarine.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

install(EXPORT KelvarineTargets NAMESPACE Kelvarine:: DESTINATION ${KV_CMAKE_PACKAGE_DIR})
write_basic_package_version_file(KelvarineConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES cmake/KelvarineConfig.cmake ${CMAKE_CURRENT_BINARY_DIR}/KelvarineConfigVersion.cmake
  DESTINATION ${KV_CMAKE_PACKAGE_DIR})
