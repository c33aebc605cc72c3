# GoogleTest from Debian's sources, so that the cross build gets it too, and the
# function that adds one test program for a folder.

set(VEL_GOOGLETEST_DIR /usr/src/googletest CACHE PATH "GoogleTest sources")
if(NOT EXISTS ${VEL_GOOGLETEST_DIR}/CMakeLists.txt)
  message(FATAL_ERROR "GoogleTest sources not found in ${VEL_GOOGLETEST_DIR}: run ./dev setup")
endif()
set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
set(BUILD_GMOCK ON CACHE BOOL "" FORCE)
set(CMAKE_WARN_DEPRECATED OFF CACHE BOOL "" FORCE)
add_subdirectory(${VEL_GOOGLETEST_DIR} ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
unset(CMAKE_WARN_DEPRECATED CACHE)

if(CMAKE_CROSSCOMPILING)
  add_test(NAME wine_server COMMAND ${CMAKE_COMMAND} -E env ${PROJECT_SOURCE_DIR}/cmake/wine-warm-up hostname.exe)
  set_tests_properties(wine_server PROPERTIES FIXTURES_SETUP wine)
  add_custom_target(wine_icu
    COMMAND ${PROJECT_SOURCE_DIR}/cmake/wine-icu-beside ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}
    VERBATIM)
  add_dependencies(qamc5032 wine_icu)
endif()

# vel_limit_test(NAME): what all of the tests need. A test that hangs ends at some time, at one that no busy machine
# reaches.
function(vel_limit_test name)
  set_tests_properties(${name} PROPERTIES TIMEOUT 1500)
  if(CMAKE_CROSSCOMPILING)
    set_tests_properties(${name} PROPERTIES FIXTURES_REQUIRED wine)
  endif()
endfunction()

# vel_add_test_program(NAME SOURCES <files>...): a program that tests start as a child.
function(vel_add_test_program name)
  cmake_parse_arguments(ARG "" "" "SOURCES" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  vel_use_project_options(${name})
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR})
  target_link_libraries(${name} PRIVATE qamc5032)
endfunction()

# vel_add_tests(NAME SOURCES <files>... [LIBRARIES <targets>...]): one program, one
# ctest entry; under Wine starting a process costs more than most tests.
function(vel_add_tests name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LIBRARIES;DEPENDS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  vel_use_project_options(${name})
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR})
  # The folder of the data files that tests read.
  target_compile_definitions(${name} PRIVATE VEL_TEST_DATA="${CMAKE_CURRENT_SOURCE_DIR}/")
  target_link_libraries(${name} PRIVATE qamc5032 test_support gmock_main ${ARG_LIBRARIES})
  add_test(NAME ${name} COMMAND ${name} WORKING_DIRECTORY ${CMAKE_RUNTIME_OUTPUT_DIRECTORY})
  vel_limit_test(${name})
  if(ARG_DEPENDS)
    add_dependencies(${name} ${ARG_DEPENDS})
  endif()
endfunction()
