# Installation: public headers, shared and static libraries, a CMake
# package (find_package(tide_sdk) gives tide::sdk, tide::sdk_static,
# tide::sim, tide::sim_static) and pkg-config files (tide_sdk, tide_sim).
include(CMakePackageConfigHelpers)

install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/tide DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(TARGETS tide_sdk tide_sdk_static tide_sim tide_sim_static
  EXPORT tide_sdkTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})

set(TIDE_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/tide_sdk)
install(EXPORT tide_sdkTargets NAMESPACE tide:: DESTINATION ${TIDE_CMAKE_DIR})
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/tide_sdkConfig.cmake.in
  ${PROJECT_BINARY_DIR}/tide_sdkConfig.cmake INSTALL_DESTINATION ${TIDE_CMAKE_DIR})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/tide_sdkConfigVersion.cmake
  VERSION ${PROJECT_VERSION} COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/tide_sdkConfig.cmake ${PROJECT_BINARY_DIR}/tide_sdkConfigVersion.cmake
  DESTINATION ${TIDE_CMAKE_DIR})

# The pkg-config files find their prefix from where they lie, so an
# installation can be moved (or installed with --prefix) as a whole.
file(RELATIVE_PATH TIDE_PC_TO_PREFIX "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
foreach(pc tide_sdk tide_sim)
  configure_file(${PROJECT_SOURCE_DIR}/cmake/${pc}.pc.in ${PROJECT_BINARY_DIR}/${pc}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${pc}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endforeach()
