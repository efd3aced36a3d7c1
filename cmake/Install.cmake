# cmake --install: the library, its headers, and what find_package and pkg-config look for.
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/Ondrix)

install(TARGETS ondrixopt EXPORT OndrixTargets LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} FILES_MATCHING PATTERN "*.h")

install(EXPORT OndrixTargets NAMESPACE Ondrix:: DESTINATION ${package_dir})
configure_package_config_file(cmake/OndrixConfig.cmake.in ${PROJECT_BINARY_DIR}/OndrixConfig.cmake
  INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/OndrixConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/OndrixConfig.cmake ${PROJECT_BINARY_DIR}/OndrixConfigVersion.cmake
  DESTINATION ${package_dir})

# The pkg-config file finds the prefix from its own place, so that the installed tree can be moved.
if(IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}" OR IS_ABSOLUTE "${CMAKE_INSTALL_INCLUDEDIR}")
  set(ONDRIX_PC_PREFIX ${CMAKE_INSTALL_PREFIX})
  set(ONDRIX_PC_LIBDIR ${CMAKE_INSTALL_FULL_LIBDIR})
  set(ONDRIX_PC_INCLUDEDIR ${CMAKE_INSTALL_FULL_INCLUDEDIR})
else()
  file(RELATIVE_PATH up /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
  string(REGEX REPLACE "/$" "" up "${up}")
  set(ONDRIX_PC_PREFIX "\${pcfiledir}/${up}")
  set(ONDRIX_PC_LIBDIR "\${prefix}/${CMAKE_INSTALL_LIBDIR}")
  set(ONDRIX_PC_INCLUDEDIR "\${prefix}/${CMAKE_INSTALL_INCLUDEDIR}")
endif()
configure_file(cmake/ondrix.pc.in ${PROJECT_BINARY_DIR}/ondrix.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/ondrix.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
