include(CMakePackageConfigHelpers)

install(TARGETS ondrixopt EXPORT OndrixTargets LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
