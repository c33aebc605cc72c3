# Fuzz targets. ./dev fuzz builds them with libFuzzer. In all other builds each target is a test that replays its
# seeds and the variations that replay.cpp makes of them. The seeds are in corpus/<target without "_fuzz">. A
# dictionary for a target is beside that directory and has the name of the target or its first word.

# The number of kilobytes that a replay processes. A limit in bytes instead of in seconds does not fail on a busy
# machine. It is lower where the same work takes longer: with sanitizers a byte costs twenty times as much, and under
# Wine a file does.
set(VEL_REPLAY_WORK 8000)
if(VEL_SANITIZE)
  set(VEL_REPLAY_WORK 1000)
elseif(CMAKE_CROSSCOMPILING)
  set(VEL_REPLAY_WORK 4000)
endif()

if(VEL_BUILD_FUZZERS)
  vel_add_parts(fuzz_entry SOURCES fuzzer_entry.cpp)
else()
  # One program replays the inputs of all targets, because linking many programs takes longer than compiling them.
  add_executable(fuzz_replay replay.cpp)
  set_source_files_properties(replay.cpp PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
  vel_use_test_options(fuzz_replay)
  target_include_directories(fuzz_replay PRIVATE ${PROJECT_SOURCE_DIR})
  target_link_libraries(fuzz_replay PRIVATE qamc5032_inside test_support)
  if(MINGW)
    # The tools' parts are compiled for the shared library; lld links them with these objects as well, and warns of that.
    target_link_options(fuzz_replay PRIVATE LINKER:-Xlink=-ignore:4217)
  endif()
endif()

# vel_add_fuzzer(NAME [INSIDE] [POSIX] [DIVISOR <number>] [PARTS <targets>...]): adds the target in NAME.cpp. INSIDE is
# required if it calls functions that the shared library hides. DIVISOR reduces the work of slow targets. POSIX is for
# targets that use something that Windows does not have.
function(vel_add_fuzzer name)
  cmake_parse_arguments(ARG "INSIDE;POSIX" "DIVISOR" "PARTS" ${ARGN})
  if(ARG_POSIX AND WIN32)
    return()
  endif()
  if(VEL_BUILD_FUZZERS)
    vel_add_fuzzer_program(${name} "${ARG_PARTS}" ${ARG_INSIDE})
    return()
  endif()
  target_sources(fuzz_replay PRIVATE ${name}.cpp)
  target_link_libraries(fuzz_replay PRIVATE ${ARG_PARTS})
  string(REGEX REPLACE "_fuzz$" "" target ${name})
  set(work ${VEL_REPLAY_WORK})
  if(ARG_DIVISOR)
    math(EXPR work "${work} / ${ARG_DIVISOR}")
  endif()
  add_test(NAME ${name} COMMAND fuzz_replay ${target} ${CMAKE_CURRENT_SOURCE_DIR}/corpus/${target} ${work}
           WORKING_DIRECTORY ${CMAKE_RUNTIME_OUTPUT_DIRECTORY})
  vel_limit_test(${name})
endfunction()

function(vel_add_fuzzer_program name parts inside)
  add_executable(${name} ${name}.cpp)
  vel_use_project_options(${name})
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR})
  set(libraries qamc5032 qamc5032_seam)
  if(inside)
    set(libraries qamc5032_inside)
  endif()
  target_link_libraries(${name} PRIVATE ${parts} ${libraries} fuzz_entry)
  target_link_options(${name} PRIVATE -fsanitize=fuzzer)
endfunction()
