# The shared library. Rooms.cmake adds the objects of the rooms.
add_library(qamc5032 SHARED)
add_library(qamc5032::qamc5032 ALIAS qamc5032)
vel_use_project_options(qamc5032)
# The headers use C++20, which no compiler of today has as its default.
target_compile_features(qamc5032 INTERFACE cxx_std_20)
set_target_properties(qamc5032 PROPERTIES
  LINKER_LANGUAGE CXX
  SOVERSION ${PROJECT_VERSION_MAJOR}
  VERSION ${PROJECT_VERSION}
  VERIFY_INTERFACE_HEADER_SETS ON)

# VEL_SYSTEM selects the list of exported names, vel_include/exported_names/<system>.txt. VEL_EXPORTS_OPTIONS are
# arguments for its check: on Windows the names are in a module-definition file, and on Linux the Debian package has a
# list of its own.
if(WIN32)
  set(VEL_SYSTEM windows)
  include(cmake/ImportLibrary.cmake)
  set(def_file ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/qamc5032.def)
  set(VEL_EXPORTS_OPTIONS --def ${def_file})
  set_target_properties(qamc5032 PROPERTIES PREFIX "")
  target_link_options(qamc5032 PRIVATE LINKER:--output-def,${def_file})
else()
  set(VEL_SYSTEM linux)
  set(VEL_EXPORTS_OPTIONS --symbols ${PROJECT_SOURCE_DIR}/debian/libqamc5032-5.symbols --version ${PROJECT_VERSION})
  target_link_options(qamc5032 PRIVATE LINKER:-Bsymbolic-functions)
endif()
if(NOT WIN32 AND NOT VEL_SANITIZE AND PROJECT_IS_TOP_LEVEL)
  # Reports undefined symbols now instead of when the first program is linked. With sanitizers, which a
  # project around this one may also use, some symbols are defined only in the program.
  target_link_options(qamc5032 PRIVATE LINKER:--no-undefined)
endif()
