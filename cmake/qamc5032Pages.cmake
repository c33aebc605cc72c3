# Manual pages and completions of programs that use VelClConsoleUI. find_package(qamc5032) defines both functions; they
# need Python 3 when the pages are built.
#
# qamc5032_add_manual_page(<target> [NAME <name>] [TEXTS <file>] [SECTIONS <file>])
# qamc5032_add_completions(<target> [NAME <name>] [TEXTS <file>] [SHELLS <shell>...] [VALUES <line>...])
#
# They generate the pages as part of every build, from the title, usage string and help text of the program, and install
# them where manuals and shells look for them. NAME is the name of the command; the default is that of the target's
# file. SHELLS are bash, zsh, fish and powershell; the default is all.
#
# A program that calls VelClConsoleUI::useConventions tells its texts itself: it is started with the environment
# variable VEL_CONSOLEUI_DESCRIBE, must be able to run during the build, and ends in handleUsageHelp. For all other
# programs TEXTS names a file with the texts:
#
#   Name: greet
#   Title: Greeter
#   Version: 1.0
#   Usage:
#    [(-name <name>)]
#   Help:
#    -name <name>  whom to greet
#
# SECTIONS names a file with further sections of the manual page: exit codes, examples, related pages. A line of capital
# letters begins a section, indented lines are shown as they are, and two blanks separate a term from its meaning:
#
#   EXIT STATUS
#   0    success
#   201  the command line is wrong
#
#   EXAMPLES
#   Greet somebody twice:
#
#       $ greet -name Ada -times 2
#
#   SEE ALSO
#   cat(1)
#
# Values of switches are completed where the usage string has alternatives, as in (-format <text|tsv>), or a <file> or
# <directory>. A line of VALUES is for other values of a switch:
#
#   "-format: plain ini shell"                      words
#   "-log: <file>"                                  files, or <directory>
#   "-section: $ velini -file {-file} -sections"    the lines that a command prints, up to the first tab. {-file} is
#                                                   the value of another switch; $2 takes the second column

# Installed, the scripts are beside this file. The variable is in the cache, because functions are known everywhere and
# variables are not.
set(qamc5032_PAGES_SCRIPT "${CMAKE_CURRENT_LIST_DIR}/pages/make_tool_pages.py")
if(NOT EXISTS ${qamc5032_PAGES_SCRIPT})
  get_filename_component(qamc5032_PAGES_SCRIPT "${CMAKE_CURRENT_LIST_DIR}/../tools/make_tool_pages.py" ABSOLUTE)
endif()
set(qamc5032_PAGES_SCRIPT "${qamc5032_PAGES_SCRIPT}" CACHE INTERNAL "Generates manual pages and completions")

# Sets in the caller the name of the command, its output directory, and the arguments that tell the script the texts.
function(_qamc5032_page_source target name texts)
  if(NOT name)
    get_target_property(name ${target} OUTPUT_NAME)
    if(NOT name)
      set(name ${target})
    endif()
  endif()
  find_package(Python3 COMPONENTS Interpreter REQUIRED)
  set(source --program ${CMAKE_CROSSCOMPILING_EMULATOR} $<TARGET_FILE:${target}>)
  set(depends ${target})
  if(texts)
    get_filename_component(texts "${texts}" ABSOLUTE)
    set(source --texts ${texts})
    set(depends ${texts})
  endif()
  set(directory ${CMAKE_CURRENT_BINARY_DIR}/${target}_pages)
  file(MAKE_DIRECTORY ${directory})
  set(qamc5032_name ${name} PARENT_SCOPE)
  set(qamc5032_directory ${directory} PARENT_SCOPE)
  set(qamc5032_source ${source} PARENT_SCOPE)
  set(qamc5032_depends ${depends} ${qamc5032_PAGES_SCRIPT} PARENT_SCOPE)
  set(qamc5032_make ${Python3_EXECUTABLE} -B ${qamc5032_PAGES_SCRIPT} --name ${name} PARENT_SCOPE)
endfunction()

function(qamc5032_add_manual_page target)
  cmake_parse_arguments(PARSE_ARGV 1 ARG "" "NAME;TEXTS;SECTIONS" "")
  _qamc5032_page_source(${target} "${ARG_NAME}" "${ARG_TEXTS}")
  include(GNUInstallDirs)
  set(page ${qamc5032_directory}/${qamc5032_name}.1)
  set(sections)
  if(ARG_SECTIONS)
    get_filename_component(ARG_SECTIONS "${ARG_SECTIONS}" ABSOLUTE)
    set(sections --sections ${ARG_SECTIONS})
  endif()
  add_custom_command(OUTPUT ${page}
    COMMAND ${qamc5032_make} --man ${page} ${sections} ${qamc5032_source}
    DEPENDS ${qamc5032_depends} ${ARG_SECTIONS} COMMENT "Generating the manual page of ${qamc5032_name}" VERBATIM)
  add_custom_target(${target}_manual_page ALL DEPENDS ${page})
  install(FILES ${page} DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
endfunction()

# Installs the completion of one shell under the name by which the shell finds it. More arguments are for install().
function(_qamc5032_install_completion shell file name)
  include(GNUInstallDirs)
  set(bash_path bash-completion/completions/${name})
  set(zsh_path zsh/site-functions/_${name})
  set(fish_path fish/vendor_completions.d/${name}.fish)
  set(powershell_path powershell/completions/${name}.ps1)
  get_filename_component(directory ${${shell}_path} DIRECTORY)
  get_filename_component(installed_name ${${shell}_path} NAME)
  install(FILES ${file} DESTINATION ${CMAKE_INSTALL_DATADIR}/${directory} RENAME ${installed_name} ${ARGN})
endfunction()

function(qamc5032_add_completions target)
  cmake_parse_arguments(PARSE_ARGV 1 ARG "" "NAME;TEXTS" "SHELLS;VALUES")
  _qamc5032_page_source(${target} "${ARG_NAME}" "${ARG_TEXTS}")
  if(NOT ARG_SHELLS)
    set(ARG_SHELLS bash zsh fish powershell)
  endif()
  set(files)
  set(arguments)
  foreach(shell ${ARG_SHELLS})
    set(file ${qamc5032_directory}/${qamc5032_name}.${shell})
    list(APPEND files ${file})
    list(APPEND arguments --${shell} ${file})
    _qamc5032_install_completion(${shell} ${file} ${qamc5032_name})
  endforeach()
  foreach(line IN LISTS ARG_VALUES)
    list(APPEND arguments "--value=${line}")
  endforeach()
  add_custom_command(OUTPUT ${files}
    COMMAND ${qamc5032_make} ${arguments} ${qamc5032_source}
    DEPENDS ${qamc5032_depends} COMMENT "Generating the completions of ${qamc5032_name}" VERBATIM)
  add_custom_target(${target}_completions ALL DEPENDS ${files})
endfunction()
