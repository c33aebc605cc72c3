# Installs the library. `find_package(qamc5032)` defines the target qamc5032::qamc5032 and qamc5032_RUNTIME_DIR, the
# directory with the DLLs that Windows programs need in their own directory. pkg-config calls that directory bindir.
# There are four components: runtime, development, tools and documentation. tools/CMakeLists.txt installs the files of
# the tools, and docs/CMakeLists.txt the manual.
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/qamc5032)
# The library finds its message catalog in the directory of the program, and in its own directory.
set(catalog_dir $<IF:$<BOOL:${WIN32}>,${CMAKE_INSTALL_BINDIR},${CMAKE_INSTALL_LIBDIR}>)

install(TARGETS qamc5032 EXPORT qamc5032
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT development
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development
  FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/qamc5032 COMPONENT development)
# CMake before version 3.23 ignores the set of headers of an imported target.
target_include_directories(qamc5032 INTERFACE $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/qamc5032>)
if(VEL_HAS_CATALOGS)
  install(FILES ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/qammsg50.DLL DESTINATION ${catalog_dir} COMPONENT runtime)
endif()
# The licence of the code page mappings requires its notice in every copy.
install(FILES ${PROJECT_SOURCE_DIR}/LICENSE ${PROJECT_SOURCE_DIR}/THIRD_PARTY_NOTICES.md
        DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT runtime)
install(FILES ${PROJECT_SOURCE_DIR}/README.md ${PROJECT_SOURCE_DIR}/CHANGELOG.md
        DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT documentation)
# The examples without their tests, and what demonstrates a build folder.
install(DIRECTORY ${PROJECT_SOURCE_DIR}/examples/ DESTINATION ${CMAKE_INSTALL_DOCDIR}/examples COMPONENT documentation
        PATTERN test EXCLUDE PATTERN examples_test.cpp EXCLUDE PATTERN demonstration EXCLUDE
        PATTERN consumer_of_sources EXCLUDE REGEX examples/CMakeLists\\.txt$ EXCLUDE)
if(WIN32)
  install(FILES ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/qamc5032.def ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/qamc5032.lib
          DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development)
  install(FILES ${VEL_RUNTIME_DLLS} DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime)
  # Most of the C++ runtime is debug information, and CMake strips only targets.
  install(CODE "
    if(CMAKE_INSTALL_DO_STRIP)
      foreach(dll libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll)
        execute_process(COMMAND \"${CMAKE_STRIP}\" \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_BINDIR}/\${dll}\"
                        COMMAND_ERROR_IS_FATAL ANY)
      endforeach()
    endif()" COMPONENT runtime)
  # The notices of the C++ runtime's authors must accompany its DLLs.
  foreach(source gcc-mingw-w64-base mingw-w64-x86-64-dev)
    install(FILES /usr/share/doc/${source}/copyright DESTINATION ${CMAKE_INSTALL_DOCDIR} RENAME ${source}.txt
            COMPONENT runtime OPTIONAL)
  endforeach()
endif()
install(EXPORT qamc5032 NAMESPACE qamc5032:: DESTINATION ${package_dir} FILE qamc5032Targets.cmake
        COMPONENT development)
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/qamc5032Config.cmake.in
  ${PROJECT_BINARY_DIR}/qamc5032Config.cmake INSTALL_DESTINATION ${package_dir} PATH_VARS CMAKE_INSTALL_BINDIR)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/qamc5032ConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/qamc5032Config.cmake ${PROJECT_BINARY_DIR}/qamc5032ConfigVersion.cmake
        DESTINATION ${package_dir} COMPONENT development)

# The functions for catalogs, manual pages, completions and manifests of programs, and the scripts that they run.
foreach(functions Catalogs Pages Utf8)
  install(FILES ${PROJECT_SOURCE_DIR}/cmake/qamc5032${functions}.cmake DESTINATION ${package_dir} COMPONENT development)
endforeach()
foreach(script completions make_tool_pages page_sections program_texts tool_texts)
  install(FILES ${PROJECT_SOURCE_DIR}/tools/${script}.py DESTINATION ${package_dir}/pages COMPONENT development)
endforeach()

# pkg-config prints the directory where the library is installed, which is known only then. A Windows package is
# unpacked anywhere, so its directories are relative to the file.
set(pkgconfig_dir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
if(WIN32)
  set(find_prefix [[set(prefix "\${pcfiledir}/../..")]])
else()
  set(find_prefix [[get_filename_component(prefix "${CMAKE_INSTALL_PREFIX}" ABSOLUTE)]])
endif()
set(prefix @prefix@)
configure_file(${PROJECT_SOURCE_DIR}/cmake/qamc5032.pc.in ${PROJECT_BINARY_DIR}/qamc5032.pc.in @ONLY)
install(CODE "${find_prefix}
  configure_file(\"${PROJECT_BINARY_DIR}/qamc5032.pc.in\" \"${PROJECT_BINARY_DIR}/qamc5032.pc\" @ONLY)"
  COMPONENT development)
install(FILES ${PROJECT_BINARY_DIR}/qamc5032.pc DESTINATION ${pkgconfig_dir} COMPONENT development)

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
