# Warnings, sanitizers, and the run-time DLLs that Windows programs need in their directory.

function(vel_use_project_options target)
  target_compile_options(${target} PRIVATE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wcast-align -Wformat=2
    -Wnull-dereference $<$<COMPILE_LANGUAGE:CXX>:-Wold-style-cast;-Wnon-virtual-dtor;-Woverloaded-virtual>)
  if(VEL_WARNINGS_AS_ERRORS)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
  target_compile_definitions(${target} PRIVATE $<$<CONFIG:Debug>:_GLIBCXX_ASSERTIONS>)
  if(VEL_JOIN_SOURCES AND CMAKE_CXX_COMPILER_ID STREQUAL GNU)
    # Equal functions of joined sources would get one address, but the check of virtual functions finds their names by
    # their addresses.
    target_compile_options(${target} PRIVATE -fno-ipa-icf)
  endif()
  if(VEL_SANITIZE)
    target_compile_definitions(${target} PRIVATE VEL_SANITIZED)
    target_compile_options(${target} PRIVATE
      -fsanitize=${VEL_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(${target} PRIVATE -fsanitize=${VEL_SANITIZE})
  endif()
  if(VEL_COVERAGE)
    target_compile_options(${target} PRIVATE -fprofile-instr-generate -fcoverage-mapping)
    target_link_options(${target} PRIVATE -fprofile-instr-generate)
  endif()
  if(VEL_BUILD_FUZZERS)
    # Instruments the library as well, so that the fuzzer sees which code an input reaches.
    target_compile_options(${target} PRIVATE -fsanitize=fuzzer-no-link)
  endif()
endfunction()

# Options for sources with vector intrinsics. The intrinsics' own headers leave vectors uninitialized on purpose, which
# g++ warns about.
set(VEL_VECTOR_OPTIONS $<$<NOT:$<CONFIG:Debug>>:-O3> $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
if(MINGW)
  # The compiler spills vectors with instructions that need an aligned stack, but 64-bit Windows aligns the stack to 16
  # bytes only.
  list(APPEND VEL_VECTOR_OPTIONS -Wa,-muse-unaligned-vector-move)
endif()

# Standard headers take half of the time that a source of the library takes to compile. With VEL_PRECOMPILE_HEADERS they
# are compiled once. A source that lacks an #include is then an error only where ./dev lint reads the source alone.
option(VEL_PRECOMPILE_HEADERS "Compile the standard headers once" OFF)

# Joining sources to one compilation halves the time of a whole build, because templates are instantiated once. Without it
# a changed source is rebuilt sooner: cmake --preset linux -DVEL_JOIN_SOURCES=OFF
option(VEL_JOIN_SOURCES "Compile several sources of a target together" OFF)
function(vel_join_sources target)
  set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE 8)
endfunction()

# vel_add_precompiled_headers(NAME <headers>...): the object library NAME compiles these headers. Targets with the same
# options use them: target_precompile_headers(<target> REUSE_FROM NAME).
function(vel_add_precompiled_headers name)
  file(CONFIGURE OUTPUT ${CMAKE_BINARY_DIR}/${name}.cpp CONTENT "")
  add_library(${name} OBJECT EXCLUDE_FROM_ALL ${CMAKE_BINARY_DIR}/${name}.cpp)
  target_precompile_headers(${name} PRIVATE ${ARGN})
endfunction()

set(VEL_COMMON_HEADERS
  <algorithm> <array> <bit> <cerrno> <charconv> <climits> <cstddef> <cstdint> <cstdio> <cstdlib> <cstring> <iosfwd>
  <iterator> <limits> <memory> <new> <optional> <ostream> <string> <string_view> <utility> <vector>)

if(VEL_PRECOMPILE_HEADERS)
  vel_add_precompiled_headers(program_headers ${VEL_COMMON_HEADERS})
  vel_use_project_options(program_headers)
endif()
function(vel_reuse_program_headers target)
  if(VEL_PRECOMPILE_HEADERS)
    target_precompile_headers(${target} REUSE_FROM program_headers)
  endif()
endfunction()

# vel_add_parts(NAME SOURCES <files>...): sources that several programs share. They are compiled once, and only if one
# of the programs is built. A program links them like a library.
function(vel_add_parts name)
  cmake_parse_arguments(ARG "" "" "SOURCES" ${ARGN})
  add_library(${name} OBJECT EXCLUDE_FROM_ALL ${ARG_SOURCES})
  # CMake cannot deduce the language of headers alone.
  set_target_properties(${name} PROPERTIES LINKER_LANGUAGE CXX)
  vel_use_project_options(${name})
  vel_reuse_program_headers(${name})
  if(VEL_JOIN_SOURCES)
    vel_join_sources(${name})
  endif()
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR})
endfunction()

# The C++ runtime is linked as a shared library, so that exceptions and streams can cross the DLL boundary. With a copy
# of its own in this library, a program that catches one of its exceptions gets -1 from std::uncaught_exceptions()
# afterwards. On Windows the DLLs of the runtime must be in the directory of the programs.
if(MINGW)
  # A time stamp would make every build different.
  add_link_options(LINKER:--no-insert-timestamp)
  set(VEL_RUNTIME_DLLS)
  foreach(dll libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll)
    execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${dll}
                    OUTPUT_VARIABLE path OUTPUT_STRIP_TRAILING_WHITESPACE)
    if(NOT EXISTS "${path}")
      message(FATAL_ERROR "run-time library ${dll} of ${CMAKE_CXX_COMPILER} not found")
    endif()
    file(COPY ${path} DESTINATION ${CMAKE_RUNTIME_OUTPUT_DIRECTORY} FOLLOW_SYMLINK_CHAIN)
    list(APPEND VEL_RUNTIME_DLLS ${path})
  endforeach()
endif()
