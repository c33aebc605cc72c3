# Message catalogs of programs. find_package(qamc5032) defines the function; it needs velmsg when the catalog is built.
#
# qamc5032_add_catalog(<target> NAME <name> SOURCES <file.mc>... [LANGUAGES <language>...] [HEADER <file.h>]
#                      [FUNCTIONS <file.h>])
#
# Compiles message sources to the catalog <name>.DLL whenever the program <target> is built, and puts it beside that. No
# other call in the project may have the same name.
# LANGUAGES selects languages of the sources by name or number; the default is all. HEADER is a C header with the
# identifiers of the messages, and FUNCTIONS a C++ header with functions for them, which the sources of <target> can
# include by these names. The variable <name>_CATALOG is set to the file, to install it with the program:
#
#   install(FILES ${<name>_CATALOG} DESTINATION ${CMAKE_INSTALL_BINDIR})
#
# velmsg is searched beside the library and along PATH. In a cross build it must run on this machine, or with the
# program of CMAKE_CROSSCOMPILING_EMULATOR; the cache variable qamc5032_VELMSG names another one.

# Sets in the caller the command line of velmsg and the targets that it depends on.
function(_qamc5032_velmsg command depends)
  # The project of the library itself uses velmsg before it defines that.
  if((TARGET velmsg OR VEL_HAS_CATALOGS) AND NOT qamc5032_VELMSG)
    # Packages are built without paths for the loader, so it must be told where the library is.
    set(run ${CMAKE_COMMAND} -E env LD_LIBRARY_PATH=$<TARGET_FILE_DIR:qamc5032>)
    if(CMAKE_CROSSCOMPILING)
      set(run ${CMAKE_CROSSCOMPILING_EMULATOR})
    endif()
    set(${command} ${run} $<TARGET_FILE:velmsg> PARENT_SCOPE)
    set(${depends} velmsg PARENT_SCOPE)
    return()
  endif()
  # The names of programs have extensions on Windows only, but a cross build may have nothing else.
  find_program(qamc5032_VELMSG NAMES velmsg velmsg.exe HINTS ${qamc5032_RUNTIME_DIR} NO_CMAKE_FIND_ROOT_PATH
               DOC "Compiles message catalogs")
  if(NOT qamc5032_VELMSG)
    message(FATAL_ERROR "qamc5032_add_catalog needs velmsg: install the tools of qamc5032, or set qamc5032_VELMSG")
  endif()
  set(run)
  if(CMAKE_CROSSCOMPILING AND qamc5032_VELMSG MATCHES "\\.exe$")
    set(run ${CMAKE_CROSSCOMPILING_EMULATOR})
  endif()
  set(${command} ${run} ${qamc5032_VELMSG} PARENT_SCOPE)
  set(${depends} ${qamc5032_VELMSG} PARENT_SCOPE)
endfunction()

# _qamc5032_compile_catalog(<catalog> SOURCES <file.mc>... [HEADER <file.h>] [FUNCTIONS <file.h>]
# [ARGUMENTS <argument>...]): adds the command that makes the files.
function(_qamc5032_compile_catalog catalog)
  cmake_parse_arguments(PARSE_ARGV 1 ARG "" "HEADER;FUNCTIONS" "SOURCES;ARGUMENTS")
  set(sources)
  foreach(source IN LISTS ARG_SOURCES)
    get_filename_component(source "${source}" ABSOLUTE)
    list(APPEND sources "${source}")
  endforeach()
  set(headers)
  if(ARG_HEADER)
    list(APPEND headers -header "${ARG_HEADER}")
  endif()
  if(ARG_FUNCTIONS)
    list(APPEND headers -functions "${ARG_FUNCTIONS}")
  endif()
  get_filename_component(name "${catalog}" NAME)
  get_filename_component(directory "${catalog}" DIRECTORY)
  file(MAKE_DIRECTORY "${directory}")
  _qamc5032_velmsg(velmsg depends)
  add_custom_command(
    OUTPUT "${catalog}" ${ARG_HEADER} ${ARG_FUNCTIONS}
    COMMAND ${velmsg} -quiet -compile ${sources} -out "${catalog}" ${headers} ${ARG_ARGUMENTS}
    DEPENDS ${sources} ${depends}
    COMMENT "Compiling message catalog ${name}"
    VERBATIM)
endfunction()

function(qamc5032_add_catalog target)
  cmake_parse_arguments(PARSE_ARGV 1 ARG "" "NAME;HEADER;FUNCTIONS" "SOURCES;LANGUAGES")
  if(NOT ARG_NAME OR NOT ARG_SOURCES OR ARG_UNPARSED_ARGUMENTS)
    message(FATAL_ERROR "qamc5032_add_catalog(<target> NAME <name> SOURCES <file.mc>... [LANGUAGES <language>...] "
                        "[HEADER <file.h>] [FUNCTIONS <file.h>])")
  endif()
  if(TARGET ${ARG_NAME}_catalog)
    message(FATAL_ERROR "qamc5032_add_catalog: the project has a catalog, or a target, ${ARG_NAME}_catalog already: "
                        "choose another NAME for that of ${target}")
  endif()
  set(directory ${CMAKE_CURRENT_BINARY_DIR}/${target}_catalogs)
  set(catalog ${directory}/${ARG_NAME}.DLL)
  set(headers)
  foreach(kind HEADER FUNCTIONS)
    if(ARG_${kind})
      set(header ${directory}/${ARG_${kind}})
      list(APPEND headers ${kind} ${header})
      get_filename_component(header_directory ${header} DIRECTORY)
      file(MAKE_DIRECTORY ${header_directory})
      target_include_directories(${target} PRIVATE ${directory})
      # As a source of the target, the header is made before the others are compiled.
      target_sources(${target} PRIVATE ${header})
    endif()
  endforeach()
  set(arguments)
  if(ARG_LANGUAGES)
    set(arguments -languages ${ARG_LANGUAGES})
  endif()
  _qamc5032_compile_catalog(${catalog} SOURCES ${ARG_SOURCES} ${headers} ARGUMENTS ${arguments})
  # The catalog is copied before its program is built, so that a build of the program alone makes both. The directory
  # of the program, which may depend on the configuration, is in a script: in a command it would depend on the program.
  set(copy ${directory}/${ARG_NAME}-$<CONFIG>.cmake)
  file(GENERATE OUTPUT ${copy}
       CONTENT "configure_file([[${catalog}]] [[$<TARGET_FILE_DIR:${target}>/${ARG_NAME}.DLL]] COPYONLY)\n")
  add_custom_target(${ARG_NAME}_catalog ALL COMMAND ${CMAKE_COMMAND} -P ${copy} DEPENDS ${catalog} VERBATIM)
  add_dependencies(${target} ${ARG_NAME}_catalog)
  set(${ARG_NAME}_CATALOG ${catalog} PARENT_SCOPE)
endfunction()
