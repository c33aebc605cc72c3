# The installed library: `find_package(qamc5032)` gives the target qamc5032::qamc5032 and, on Windows, the folder
# of the DLLs that programs need beside them, qamc5032_RUNTIME_DIR; pkg-config calls that one bindir.
# Three components: runtime, development and tools. The tools' files are installed by their own folder.
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/qamc5032)
# The message catalog is found beside the programs, and on Linux beside the library too.
set(catalog_dir $<IF:$<BOOL:${WIN32}>,${CMAKE_INSTALL_BINDIR},${CMAKE_INSTALL_LIBDIR}>)

install(TARGETS qamc5032 EXPORT qamc5032
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT development
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development
  FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/qamc5032 COMPONENT development)
if(VEL_HAS_CATALOG_TOOLS)
  install(FILES ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/qammsg50.DLL DESTINATION ${catalog_dir} COMPONENT runtime)
endif()
# The licence goes along as soon as the owner has put one there.
install(FILES ${PROJECT_SOURCE_DIR}/LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT runtime OPTIONAL)
install(FILES ${PROJECT_SOURCE_DIR}/LICENSE ${PROJECT_SOURCE_DIR}/THIRD_PARTY_NOTICES.md
        DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT runtime)
if(WIN32)
  install(FILES ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/qamc5032.def ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/qamc5032.lib
          DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development)
  install(FILES ${VEL_RUNTIME_DLLS} DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime)
  # The notices of the C++ runtime's own makers go where its DLLs go.
  foreach(source gcc-mingw-w64-base mingw-w64-x86-64-dev)
    install(FILES /usr/share/doc/${source}/copyright DESTINATION ${CMAKE_INSTALL_DOCDIR} RENAME ${source}.txt
            COMPONENT runtime OPTIONAL)
  endforeach()
endif()
install(EXPORT qamc5032 NAMESPACE qamc5032:: DESTINATION ${package_dir} FILE qamc5032Targets.cmake
        COMPONENT development)
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/qamc5032Config.cmake.in
  ${CMAKE_BINARY_DIR}/qamc5032Config.cmake INSTALL_DESTINATION ${package_dir} PATH_VARS CMAKE_INSTALL_BINDIR)
write_basic_package_version_file(${CMAKE_BINARY_DIR}/qamc5032ConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_BINARY_DIR}/qamc5032Config.cmake ${CMAKE_BINARY_DIR}/qamc5032ConfigVersion.cmake
        DESTINATION ${package_dir} COMPONENT development)

# Relocatable: all folders are told from the place of the file itself.
set(pkgconfig_dir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
file(RELATIVE_PATH prefix_of_pkgconfig ${CMAKE_INSTALL_PREFIX}/${pkgconfig_dir} ${CMAKE_INSTALL_PREFIX})
string(REGEX REPLACE "/$" "" prefix_of_pkgconfig "${prefix_of_pkgconfig}")
configure_file(${PROJECT_SOURCE_DIR}/cmake/qamc5032.pc.in ${CMAKE_BINARY_DIR}/qamc5032.pc @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/qamc5032.pc DESTINATION ${pkgconfig_dir} COMPONENT development)

if(VEL_BUILD_TESTS AND NOT VEL_SANITIZE)
  set(toolchain)
  if(CMAKE_TOOLCHAIN_FILE)
    set(toolchain -DCMAKE_TOOLCHAIN_FILE=${CMAKE_TOOLCHAIN_FILE})
  endif()
  add_test(NAME installed_package
           COMMAND ${PROJECT_SOURCE_DIR}/cmake/check_install.sh ${CMAKE_BINARY_DIR} ${PROJECT_SOURCE_DIR}/examples
                   ${CMAKE_CXX_COMPILER} "${CMAKE_CROSSCOMPILING_EMULATOR}" ${CMAKE_COMMAND} ${toolchain})
  vel_limit_test(installed_package)
endif()
