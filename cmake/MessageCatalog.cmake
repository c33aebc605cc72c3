# The message catalogs of the project itself, which its own velmsg compiles.
include(${CMAKE_CURRENT_LIST_DIR}/qamc5032Catalogs.cmake)

set(VEL_HAS_CATALOGS ON)
if(CMAKE_CROSSCOMPILING AND NOT CMAKE_CROSSCOMPILING_EMULATOR AND NOT qamc5032_VELMSG)
  set(VEL_HAS_CATALOGS OFF)
  message(WARNING "without an emulator, or a native velmsg in qamc5032_VELMSG, there are no message catalogs: "
                  "the library uses its built-in texts")
endif()

# vel_add_message_catalog(<target> MC <file.mc> OUTPUT_NAME <name> [ANSI]): a target, part of every build, that makes
# <name>.DLL in the directory of the programs. The message source is UTF-8. Its texts are stored as UTF-16 or, with
# ANSI, in code page 1252. MC may be the output of a custom command in the same directory.
function(vel_add_message_catalog target)
  if(NOT VEL_HAS_CATALOGS)
    add_custom_target(${target})
    return()
  endif()
  cmake_parse_arguments(ARG "ANSI" "MC;OUTPUT_NAME" "" ${ARGN})
  set(entries)
  if(ARG_ANSI)
    set(entries ARGUMENTS -ansi 1252)
  endif()
  set(catalog ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/${ARG_OUTPUT_NAME}.DLL)
  _qamc5032_compile_catalog(${catalog} SOURCES ${ARG_MC} ${entries})
  add_custom_target(${target} ALL DEPENDS ${catalog})
endfunction()

# vel_add_reference_catalog(<target> MC <file.mc> OUTPUT_NAME <name>): a catalog that other tools compile, to compare
# velmsg with.
if(VEL_BUILD_TESTS)
  find_program(VEL_WINDMC x86_64-w64-mingw32-windmc)
  find_program(VEL_WINDRES x86_64-w64-mingw32-windres)
  find_program(VEL_CATALOG_LINKER NAMES x86_64-w64-mingw32-gcc-posix x86_64-w64-mingw32-gcc)
  if(NOT VEL_WINDMC OR NOT VEL_WINDRES OR NOT VEL_CATALOG_LINKER)
    message(FATAL_ERROR "the tests need x86_64-w64-mingw32-windmc, -windres and -gcc: run ./dev setup")
  endif()
endif()
function(vel_add_reference_catalog target)
  cmake_parse_arguments(ARG "" "MC;OUTPUT_NAME" "" ${ARGN})
  get_filename_component(source ${ARG_MC} ABSOLUTE)
  get_filename_component(base ${ARG_MC} NAME_WLE)
  # The message compiler uses the same output names for every source, so each catalog needs a directory of its own.
  set(work ${CMAKE_CURRENT_BINARY_DIR}/${target}.catalog)
  set(library ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/${ARG_OUTPUT_NAME}.DLL)
  file(MAKE_DIRECTORY ${work})
  add_custom_command(
    OUTPUT ${library}
    COMMAND ${VEL_WINDMC} --codepage_in=65001 --unicode_out ${source}
    COMMAND ${VEL_WINDRES} ${base}.rc ${base}.o
    COMMAND ${VEL_CATALOG_LINKER} -shared -s -nostdlib -nostartfiles
            -Wl,--entry,0,--no-insert-timestamp,--image-base,0x180000000 ${base}.o -o ${library}
    WORKING_DIRECTORY ${work}
    DEPENDS ${source}
    VERBATIM)
  add_custom_target(${target} DEPENDS ${library})
endfunction()
