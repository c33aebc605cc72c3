# Message catalogs: resource-only Windows DLLs, compiled from message sources. The tools are the same on every system,
# because the library reads the same file on every system.

find_program(VEL_WINDMC x86_64-w64-mingw32-windmc)
find_program(VEL_WINDRES x86_64-w64-mingw32-windres)
find_program(VEL_CATALOG_LINKER NAMES x86_64-w64-mingw32-gcc-posix x86_64-w64-mingw32-gcc)
set(VEL_HAS_CATALOG_TOOLS OFF)
if(VEL_WINDMC AND VEL_WINDRES AND VEL_CATALOG_LINKER)
  set(VEL_HAS_CATALOG_TOOLS ON)
elseif(VEL_BUILD_TESTS)
  message(FATAL_ERROR "the tests need x86_64-w64-mingw32-windmc, -windres and -gcc: run ./dev setup")
else()
  message(WARNING "without x86_64-w64-mingw32-windmc, -windres and -gcc there are no message catalogs: "
                  "the library uses its built-in texts")
endif()

# vel_add_message_catalog(<target> MC <file.mc> OUTPUT_NAME <name> [ANSI]): a target, part of every build, that makes
# <name>.DLL in the directory of the programs. The message source is UTF-8. Its texts are stored as UTF-16 or, with
# ANSI, in code page 1252. MC may be the output of a custom command in the same directory.
function(vel_add_message_catalog target)
  if(NOT VEL_HAS_CATALOG_TOOLS)
    add_custom_target(${target})
    return()
  endif()
  cmake_parse_arguments(ARG "ANSI" "MC;OUTPUT_NAME" "" ${ARGN})
  get_filename_component(source ${ARG_MC} ABSOLUTE)
  get_filename_component(base ${ARG_MC} NAME_WLE)
  # The message compiler uses the same output names for every source, so each catalog needs a directory of its own.
  set(work ${CMAKE_CURRENT_BINARY_DIR}/${target}.catalog)
  set(library ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/${ARG_OUTPUT_NAME}.DLL)
  set(entries --unicode_out)
  if(ARG_ANSI)
    set(entries --ascii_out --codepage_out=1252)
  endif()
  file(MAKE_DIRECTORY ${work})
  add_custom_command(
    OUTPUT ${library}
    COMMAND ${VEL_WINDMC} --codepage_in=65001 ${entries} --nullterminate ${source}
    COMMAND ${VEL_WINDRES} ${base}.rc ${base}.o
    COMMAND ${VEL_CATALOG_LINKER} -shared -s -nostdlib -nostartfiles
            -Wl,--entry,0,--no-insert-timestamp,--image-base,0x180000000 ${base}.o -o ${library}
    WORKING_DIRECTORY ${work}
    DEPENDS ${source}
    COMMENT "Compiling message catalog ${ARG_OUTPUT_NAME}.DLL"
    VERBATIM)
  add_custom_target(${target} ALL DEPENDS ${library})
endfunction()
