# Fuzz targets. ./dev fuzz builds them with libFuzzer. In all other builds each target is a test that replays its
# seeds and the variations that replay.cpp makes of them. The seeds are in corpus/<target without "_fuzz">. A
# dictionary for a target is beside that directory and has the name of the target or its first word.

# The number of kilobytes that a replay processes. A limit in bytes instead of in seconds does not fail on a busy
# machine. It is lower where the same work takes longer: with sanitizers a byte costs twenty times as much, and under
# Wine a file does.
set(VEL_REPLAY_WORK 16000)
if(VEL_SANITIZE)
  set(VEL_REPLAY_WORK 1000)
elseif(CMAKE_CROSSCOMPILING)
  set(VEL_REPLAY_WORK 4000)
endif()

if(VEL_BUILD_FUZZERS)
  vel_add_parts(fuzz_entry SOURCES fuzzer_entry.cpp)
else()
  vel_add_parts(fuzz_entry SOURCES replay.cpp)
endif()

# vel_add_fuzzer(NAME [INSIDE] [POSIX] [DIVISOR <number>] [PARTS <targets>...]): adds the target in NAME.cpp. INSIDE is
# required if it calls functions that the shared library hides. DIVISOR reduces the work of slow targets. POSIX is for
# targets that use something that Windows does not have.
function(vel_add_fuzzer name)
  cmake_parse_arguments(ARG "INSIDE;POSIX" "DIVISOR" "PARTS" ${ARGN})
  if(ARG_POSIX AND WIN32)
    return()
  endif()
  add_executable(${name} ${name}.cpp)
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR})
  if(ARG_INSIDE)
    target_link_libraries(${name} PRIVATE ${ARG_PARTS} qamc5032_inside)
  else()
    target_link_libraries(${name} PRIVATE ${ARG_PARTS} qamc5032 qamc5032_seam)
  endif()
  if(VEL_BUILD_FUZZERS)
    vel_use_project_options(${name})
    target_link_libraries(${name} PRIVATE fuzz_entry)
    target_link_options(${name} PRIVATE -fsanitize=fuzzer)
  else()
    vel_use_test_options(${name})
    target_link_libraries(${name} PRIVATE fuzz_entry test_support)
    string(REGEX REPLACE "_fuzz$" "" corpus ${name})
    set(work ${VEL_REPLAY_WORK})
    if(ARG_DIVISOR)
      math(EXPR work "${work} / ${ARG_DIVISOR}")
    endif()
    add_test(NAME ${name} COMMAND ${name} ${CMAKE_CURRENT_SOURCE_DIR}/corpus/${corpus} ${work}
             WORKING_DIRECTORY ${CMAKE_RUNTIME_OUTPUT_DIRECTORY})
    vel_limit_test(${name})
  endif()
endfunction()
