# vel_add_generated_tables(<target> OUTPUTS <files>... DEPENDS <files>... ARGUMENTS <words>...): tables that a Python
# script generates from data files. The script is the first file of DEPENDS; the outputs are in the directory
# `generated` of the current build directory, for which the arguments have "@OUT@". A room that includes the tables
# names the target after GENERATED.
function(vel_add_generated_tables target)
  cmake_parse_arguments(ARG "" "" "OUTPUTS;DEPENDS;ARGUMENTS" ${ARGN})
  set(out ${CMAKE_CURRENT_BINARY_DIR}/generated)
  file(MAKE_DIRECTORY ${out})
  list(TRANSFORM ARG_OUTPUTS PREPEND ${out}/)
  list(TRANSFORM ARG_DEPENDS PREPEND ${CMAKE_CURRENT_SOURCE_DIR}/)
  list(GET ARG_DEPENDS 0 script)
  string(REPLACE "@OUT@" "${out}" arguments "${ARG_ARGUMENTS}")
  add_custom_command(OUTPUT ${ARG_OUTPUTS} COMMAND Python3::Interpreter ${script} ${arguments}
                     DEPENDS ${ARG_DEPENDS} WORKING_DIRECTORY ${CMAKE_CURRENT_SOURCE_DIR} VERBATIM)
  add_custom_target(${target} DEPENDS ${ARG_OUTPUTS})
endfunction()
