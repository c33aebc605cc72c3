# Builds GoogleTest from the sources in Debian's package, because the cross build needs it too, and defines the
# functions that add test programs.

set(VEL_GOOGLETEST_DIR /usr/src/googletest CACHE PATH "GoogleTest sources")
if(NOT EXISTS ${VEL_GOOGLETEST_DIR}/CMakeLists.txt)
  message(FATAL_ERROR "GoogleTest sources not found in ${VEL_GOOGLETEST_DIR}: run ./dev setup")
endif()
# For what only tests run: optimizing it and describing it to a debugger would take half of a build's time. The
# sanitizers' builds keep the line numbers, which their reports need; they serve for debugging tests as well.
set(VEL_TEST_OPTIONS -O0)
if(NOT VEL_SANITIZE)
  list(APPEND VEL_TEST_OPTIONS -g0)
endif()
# The library and the tools, which users get, are linked with the linker of the compiler.
if(MINGW)
  set(VEL_TEST_LINK_OPTIONS -wrapper ${PROJECT_SOURCE_DIR}/cmake/link-with-lld)
else()
  set(VEL_TEST_LINK_OPTIONS -fuse-ld=lld)
endif()
# vel_use_test_compiler_options(NAME)
function(vel_use_test_compiler_options target)
  vel_use_project_options(${target})
  target_compile_options(${target} PRIVATE ${VEL_TEST_OPTIONS})
  target_link_options(${target} PRIVATE ${VEL_TEST_LINK_OPTIONS})
endfunction()

# GoogleTest as one source, which it is made for, because that compiles in half of the time.
find_package(Threads REQUIRED)
add_library(googletest STATIC EXCLUDE_FROM_ALL
  ${VEL_GOOGLETEST_DIR}/googletest/src/gtest-all.cc ${VEL_GOOGLETEST_DIR}/googlemock/src/gmock-all.cc)
target_include_directories(googletest SYSTEM PUBLIC
  ${VEL_GOOGLETEST_DIR}/googletest/include ${VEL_GOOGLETEST_DIR}/googlemock/include
  PRIVATE ${VEL_GOOGLETEST_DIR}/googletest ${VEL_GOOGLETEST_DIR}/googlemock)
target_compile_definitions(googletest PUBLIC GTEST_HAS_PTHREAD=1)
target_compile_options(googletest PRIVATE ${VEL_TEST_OPTIONS})
target_link_libraries(googletest PUBLIC Threads::Threads)
set_target_properties(googletest PROPERTIES UNITY_BUILD ON)

# Its headers take longer to compile than most tests.
vel_add_precompiled_headers(test_headers ${PROJECT_SOURCE_DIR}/platform/test/test.h)
target_link_libraries(test_headers PRIVATE googletest)
target_include_directories(test_headers PRIVATE ${PROJECT_SOURCE_DIR})
vel_use_test_compiler_options(test_headers)

# vel_use_test_options(NAME): the same for what links GoogleTest.
function(vel_use_test_options target)
  vel_use_test_compiler_options(${target})
  target_precompile_headers(${target} REUSE_FROM test_headers)
  if(VEL_JOIN_SOURCES)
    vel_join_sources(${target})
  endif()
endfunction()

# Its main function, which fuzz targets do not link.
add_library(googletest_main STATIC EXCLUDE_FROM_ALL ${VEL_GOOGLETEST_DIR}/googlemock/src/gmock_main.cc)
vel_use_test_options(googletest_main)
target_include_directories(googletest_main PRIVATE ${PROJECT_SOURCE_DIR})
target_link_libraries(googletest_main PUBLIC googletest)

if(CMAKE_CROSSCOMPILING)
  add_test(NAME wine_server COMMAND ${CMAKE_COMMAND} -E env ${PROJECT_SOURCE_DIR}/cmake/wine-warm-up hostname.exe)
  set_tests_properties(wine_server PROPERTIES FIXTURES_SETUP wine)
  add_custom_target(wine_icu
    COMMAND ${PROJECT_SOURCE_DIR}/cmake/wine-icu-beside ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}
    VERBATIM)
  add_dependencies(qamc5032 wine_icu)
endif()

# vel_limit_test(NAME): properties that every test needs. The time limit ends a test that hangs; it is so long that a
# busy machine does not reach it.
function(vel_limit_test name)
  set_tests_properties(${name} PROPERTIES TIMEOUT 1500)
  if(CMAKE_CROSSCOMPILING)
    set_tests_properties(${name} PROPERTIES FIXTURES_REQUIRED wine)
  endif()
endfunction()

# vel_add_test_program(NAME [POSIX] SOURCES <files>...): a program that tests start as a child process. POSIX is for
# programs that use something that Windows does not have.
function(vel_add_test_program name)
  cmake_parse_arguments(ARG "POSIX" "" "SOURCES" ${ARGN})
  if(ARG_POSIX AND WIN32)
    add_custom_target(${name})
    return()
  endif()
  add_executable(${name} ${ARG_SOURCES})
  vel_use_test_compiler_options(${name})
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR})
  target_link_libraries(${name} PRIVATE qamc5032)
endfunction()

# vel_add_test_library(NAME SOURCES <files>...): a dynamic library that tests load, named as the system does.
function(vel_add_test_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES" ${ARGN})
  add_library(${name} MODULE ${ARG_SOURCES})
  vel_use_test_compiler_options(${name})
  target_compile_definitions(${name} PRIVATE VEL_BUILDING_LIBRARY)
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR})
  if(WIN32)
    set_target_properties(${name} PROPERTIES PREFIX "")
  endif()
endfunction()

# vel_add_tests(NAME [INSIDE] [POSIX] SOURCES <files>... [POSIX_SOURCES <files>...] [PARTS <targets>...]
#               [DEPENDS <targets>...] [ENVIRONMENT <assignments>...] [UNSANITIZED <filter>])
# Adds one test program as one ctest entry, because under Wine starting a process costs more than most tests. INSIDE is
# required if the tests call functions that the shared library hides. POSIX (the whole program) and POSIX_SOURCES (these
# files) are for tests of something that Windows does not have. UNSANITIZED selects long tests of data in tables, which
# sanitizers cannot tell anything about: with sanitizers they do not run.
function(vel_add_tests name)
  cmake_parse_arguments(ARG "INSIDE;POSIX" "UNSANITIZED" "SOURCES;POSIX_SOURCES;PARTS;DEPENDS;ENVIRONMENT" ${ARGN})
  if(ARG_POSIX AND WIN32)
    return()
  endif()
  if(ARG_POSIX_SOURCES AND NOT WIN32)
    list(APPEND ARG_SOURCES ${ARG_POSIX_SOURCES})
  endif()
  set(library qamc5032)
  if(ARG_INSIDE)
    set(library qamc5032_inside)
  endif()
  add_executable(${name} ${ARG_SOURCES})
  vel_use_test_options(${name})
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR})
  # The directory with the data files of the tests.
  target_compile_definitions(${name} PRIVATE VEL_TEST_DATA="${CMAKE_CURRENT_SOURCE_DIR}/")
  target_link_libraries(${name} PRIVATE ${ARG_PARTS} ${library} test_support googletest_main)
  set(filter)
  if(VEL_SANITIZE AND ARG_UNSANITIZED)
    set(filter --gtest_filter=-${ARG_UNSANITIZED})
  endif()
  add_test(NAME ${name} COMMAND ${name} ${filter} WORKING_DIRECTORY ${CMAKE_RUNTIME_OUTPUT_DIRECTORY})
  set_tests_properties(${name} PROPERTIES ENVIRONMENT "${ARG_ENVIRONMENT}")
  vel_limit_test(${name})
  if(ARG_DEPENDS)
    add_dependencies(${name} ${ARG_DEPENDS})
  endif()
endfunction()

# vel_add_test_without_icu(NAME): runs the test program NAME once more, as on a system without ICU. With VEL_TEST_ICU=none
# wine-run hides the ICU that it provides otherwise. Natively the loader finds an empty file for each version of ICU, and
# does not search further.
set(VEL_NO_ICU_DIRECTORY ${CMAKE_BINARY_DIR}/no-icu)
file(MAKE_DIRECTORY ${VEL_NO_ICU_DIRECTORY})
foreach(version RANGE 32 99)
  list(APPEND empty_libraries ${VEL_NO_ICU_DIRECTORY}/libicuuc.so.${version})
endforeach()
file(TOUCH ${VEL_NO_ICU_DIRECTORY}/libicuuc.so ${empty_libraries})

function(vel_add_test_without_icu name)
  add_test(NAME ${name}_without_icu COMMAND ${name} WORKING_DIRECTORY ${CMAKE_RUNTIME_OUTPUT_DIRECTORY})
  set_tests_properties(${name}_without_icu PROPERTIES
    ENVIRONMENT "VEL_TEST_ICU=none;LD_LIBRARY_PATH=${VEL_NO_ICU_DIRECTORY}")
  vel_limit_test(${name}_without_icu)
endfunction()

# vel_add_test_for_user(<name> <program> <locale> <filter>): runs the tests of a program that match the filter again, for
# a user of another language, whose system is in English: a locale without its code set.
function(vel_add_test_for_user name program locale filter)
  add_test(NAME ${name} COMMAND ${program} "--gtest_filter=${filter}"
           WORKING_DIRECTORY ${CMAKE_RUNTIME_OUTPUT_DIRECTORY})
  set_tests_properties(${name} PROPERTIES ENVIRONMENT "LC_ALL=${locale}.UTF-8;LANG=en_US.UTF-8")
  vel_limit_test(${name})
endfunction()
