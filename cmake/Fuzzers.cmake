# Fuzz targets: with libFuzzer for ./dev fuzz; otherwise every test run replays their seeds, which are in
# corpus/<target without "_fuzz">, and what replay.cpp makes of them. A dictionary lies beside that folder, under the
# target's name or its first word.

# Thousands of bytes that a replay works through, which is what bounds it: a busy machine takes longer, but does not
# fail. With sanitizers a byte costs twenty times as much, and under Wine a file does.
set(VEL_REPLAY_WORK 16000)
if(VEL_SANITIZE OR CMAKE_CROSSCOMPILING)
  set(VEL_REPLAY_WORK 4000)
endif()

if(VEL_BUILD_FUZZERS)
  vel_add_parts(fuzz_entry SOURCES fuzzer_entry.cpp)
else()
  vel_add_parts(fuzz_entry SOURCES replay.cpp)
endif()

# vel_add_fuzzer(NAME [INSIDE] [POSIX] [DIVISOR <number>] [PARTS <targets>...]): NAME.cpp. With INSIDE it also calls what
# the library hides. DIVISOR is for slow targets: they do less work. POSIX is for what Windows does not have.
function(vel_add_fuzzer name)
  cmake_parse_arguments(ARG "INSIDE;POSIX" "DIVISOR" "PARTS" ${ARGN})
  if(ARG_POSIX AND WIN32)
    return()
  endif()
  add_executable(${name} ${name}.cpp)
  vel_use_project_options(${name})
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR})
  if(ARG_INSIDE)
    target_link_libraries(${name} PRIVATE ${ARG_PARTS} qamc5032_inside)
  else()
    target_link_libraries(${name} PRIVATE ${ARG_PARTS} qamc5032 qamc5032_seam)
  endif()
  if(VEL_BUILD_FUZZERS)
    target_link_libraries(${name} PRIVATE fuzz_entry)
    target_link_options(${name} PRIVATE -fsanitize=fuzzer)
  else()
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
