# The shared library. Its objects are those of the rooms, see Rooms.cmake.
add_library(qamc5032 SHARED)
add_library(qamc5032::qamc5032 ALIAS qamc5032)
vel_use_project_options(qamc5032)
set_target_properties(qamc5032 PROPERTIES
  LINKER_LANGUAGE CXX
  SOVERSION ${PROJECT_VERSION_MAJOR}
  VERSION ${PROJECT_VERSION}
  VERIFY_INTERFACE_HEADER_SETS ON)

# VEL_SYSTEM names the list of exported names; VEL_DEF_FILE_OPTION tells its check of another one.
if(WIN32)
  set(VEL_SYSTEM windows)
  include(cmake/ImportLibrary.cmake)
  set(def_file ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/qamc5032.def)
  set(VEL_DEF_FILE_OPTION --def ${def_file})
  set_target_properties(qamc5032 PROPERTIES PREFIX "")
  target_link_options(qamc5032 PRIVATE LINKER:--output-def,${def_file})
else()
  set(VEL_SYSTEM linux)
  set(VEL_DEF_FILE_OPTION)
  target_link_options(qamc5032 PRIVATE LINKER:-Bsymbolic-functions)
endif()
if(NOT WIN32 AND NOT VEL_SANITIZE)
  # A missing symbol shows here and not when the first program is linked. The sanitizers' own come with it.
  target_link_options(qamc5032 PRIVATE LINKER:--no-undefined)
endif()
