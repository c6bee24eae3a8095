# make install: headers, both libraries, a CMake package and a pkg-config file.
include(CMakePackageConfigHelpers)

install(TARGETS vkpchu8 vkpcore EXPORT vkpchTargets
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(FILES include/vkpch.h include/vkpcore.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(FILES include/vkpch.hpp DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})  # C++17 wrappers

set(config_dir ${CMAKE_INSTALL_LIBDIR}/cmake/vkpch)
install(EXPORT vkpchTargets NAMESPACE vkpch:: DESTINATION ${config_dir})
configure_package_config_file(cmake/vkpchConfig.cmake.in ${PROJECT_BINARY_DIR}/vkpchConfig.cmake
  INSTALL_DESTINATION ${config_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/vkpchConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/vkpchConfig.cmake ${PROJECT_BINARY_DIR}/vkpchConfigVersion.cmake
  DESTINATION ${config_dir})

configure_file(cmake/vkpch.pc.in ${PROJECT_BINARY_DIR}/vkpch.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/vkpch.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
