# The installed library: `find_package(qamc5032)` gives the target qamc5032::qamc5032 and, on Windows, the folder
# of the DLLs that programs need beside them, qamc5032_RUNTIME_DIR.
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/qamc5032)
# The message catalog is found beside the programs, and on Linux beside the library too.
set(catalog_dir $<IF:$<BOOL:${WIN32}>,${CMAKE_INSTALL_BINDIR},${CMAKE_INSTALL_LIBDIR}>)

install(TARGETS qamc5032 EXPORT qamc5032
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/qamc5032)
install(FILES ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/qammsg50.DLL DESTINATION ${catalog_dir})
if(WIN32)
  install(FILES ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/qamc5032.def DESTINATION ${CMAKE_INSTALL_LIBDIR})
endif()
install(FILES ${VEL_RUNTIME_DLLS} DESTINATION ${CMAKE_INSTALL_BINDIR})
install(EXPORT qamc5032 NAMESPACE qamc5032:: DESTINATION ${package_dir} FILE qamc5032Targets.cmake)
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/qamc5032Config.cmake.in
  ${CMAKE_BINARY_DIR}/qamc5032Config.cmake INSTALL_DESTINATION ${package_dir} PATH_VARS CMAKE_INSTALL_BINDIR)
write_basic_package_version_file(${CMAKE_BINARY_DIR}/qamc5032ConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_BINARY_DIR}/qamc5032Config.cmake ${CMAKE_BINARY_DIR}/qamc5032ConfigVersion.cmake
        DESTINATION ${package_dir})

if(VEL_BUILD_TESTS AND NOT VEL_SANITIZE)
  set(toolchain)
  if(CMAKE_TOOLCHAIN_FILE)
    set(toolchain -DCMAKE_TOOLCHAIN_FILE=${CMAKE_TOOLCHAIN_FILE})
  endif()
  add_test(NAME installed_package
           COMMAND ${PROJECT_SOURCE_DIR}/cmake/check_install.sh ${CMAKE_BINARY_DIR}
                   ${PROJECT_SOURCE_DIR}/examples/consumer ${CMAKE_COMMAND} ${toolchain})
  set_tests_properties(installed_package PROPERTIES PASS_REGULAR_EXPRESSION "Hello, installed!")
  if(CMAKE_CROSSCOMPILING)
    set_tests_properties(installed_package PROPERTIES FIXTURES_REQUIRED wine)
  endif()
endif()
