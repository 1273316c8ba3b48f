# find_package(Kelvarine) gives the imported target Kelvarine::kelvarine.
include("${CMAKE_CURRENT_LIST_DIR}/KelvarineTargets.cmake")
