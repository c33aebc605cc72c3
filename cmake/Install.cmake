# The installed library: `find_package(qamc5032)` gives the target qamc5032::qamc5032.
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/qamc5032)

install(TARGETS qamc5032 EXPORT qamc5032
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/qamc5032)
install(EXPORT qamc5032 NAMESPACE qamc5032:: DESTINATION ${package_dir} FILE qamc5032Config.cmake)
write_basic_package_version_file(${CMAKE_BINARY_DIR}/qamc5032ConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_BINARY_DIR}/qamc5032ConfigVersion.cmake DESTINATION ${package_dir})
install(FILES ${VEL_RUNTIME_DLLS} DESTINATION ${CMAKE_INSTALL_BINDIR})
