# Installs the library. `find_package(qamc5032)` defines the target qamc5032::qamc5032 and qamc5032_RUNTIME_DIR, the
# directory with the DLLs that Windows programs need in their own directory. pkg-config calls that directory bindir.
# There are three components: runtime, development and tools. tools/CMakeLists.txt installs the files of the tools.
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/qamc5032)
# The library finds its message catalog in the directory of the program, and in its own directory.
set(catalog_dir $<IF:$<BOOL:${WIN32}>,${CMAKE_INSTALL_BINDIR},${CMAKE_INSTALL_LIBDIR}>)

install(TARGETS qamc5032 EXPORT qamc5032
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT development
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development
  FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/qamc5032 COMPONENT development)
if(VEL_HAS_CATALOG_TOOLS)
  install(FILES ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/qammsg50.DLL DESTINATION ${catalog_dir} COMPONENT runtime)
endif()
install(FILES ${PROJECT_SOURCE_DIR}/LICENSE ${PROJECT_SOURCE_DIR}/THIRD_PARTY_NOTICES.md
        DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT runtime)
if(WIN32)
  install(FILES ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/qamc5032.def ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/qamc5032.lib
          DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development)
  install(FILES ${VEL_RUNTIME_DLLS} DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime)
  # The notices of the C++ runtime's authors must accompany its DLLs.
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

# The functions for the manual pages and completions of programs, and the scripts that they run.
install(FILES ${PROJECT_SOURCE_DIR}/cmake/qamc5032Pages.cmake DESTINATION ${package_dir} COMPONENT development)
foreach(script completions make_tool_pages program_texts tool_texts)
  install(FILES ${PROJECT_SOURCE_DIR}/tools/${script}.py DESTINATION ${package_dir}/pages COMPONENT development)
endforeach()

# The file is relocatable: all directories are relative to its own location.
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
