# Rooms: the directories that make up the library, and which room may use which. Every source is compiled once per
# preset. The shared library contains the objects of all rooms. Two static libraries, which are never installed, give
# access to objects that the shared library hides:
# - qamc5032_inside contains the objects of all rooms. White-box tests link it instead of the shared library.
# - qamc5032_seam contains the rooms without public headers. Tools link it in addition to the shared library.

add_library(qamc5032_inside STATIC EXCLUDE_FROM_ALL)
add_library(qamc5032_seam STATIC EXCLUDE_FROM_ALL)
set_target_properties(qamc5032_inside qamc5032_seam PROPERTIES LINKER_LANGUAGE CXX)
# Programs that link this library must not declare its functions as imported from a DLL.
target_compile_definitions(qamc5032_inside INTERFACE VEL_BUILDING_LIBRARY)

# vel_use_room_options(<target>): what all objects of the library are compiled with.
function(vel_use_room_options target)
  vel_use_project_options(${target})
  set_target_properties(${target} PROPERTIES POSITION_INDEPENDENT_CODE ON)
  target_compile_definitions(${target} PRIVATE VEL_BUILDING_LIBRARY)
  if(NOT WIN32)
    # Lets the compiler inline and bind calls within the library directly; programs cannot replace single functions of
    # it.
    target_compile_options(${target} PRIVATE -fno-semantic-interposition)
  endif()
endfunction()
if(VEL_PRECOMPILE_HEADERS)
  vel_add_precompiled_headers(room_headers ${VEL_COMMON_HEADERS})
  vel_use_room_options(room_headers)
endif()

# vel_add_room(<name> SOURCES <files>... [PUBLIC <headers>...] [USES <rooms>...] [GENERATED <targets>...]
#              [LIBRARIES <libraries>...])
# PUBLIC lists the headers of vel_include/ that the room implements. A file of the room may include headers of the
# room itself and of the rooms that it USES, and no others; the build checks that. GENERATED lists the targets of its
# generated tables, and LIBRARIES the system libraries that its objects need.
function(vel_add_room name)
  cmake_parse_arguments(ARG "" "" "SOURCES;PUBLIC;USES;GENERATED;LIBRARIES" ${ARGN})
  set(room room_${name})
  add_library(${room} OBJECT ${ARG_SOURCES})
  vel_use_room_options(${room})
  if(VEL_PRECOMPILE_HEADERS)
    target_precompile_headers(${room} REUSE_FROM room_headers)
  endif()
  if(VEL_JOIN_SOURCES)
    vel_join_sources(${room})
  endif()
  target_include_directories(${room} PRIVATE ${PROJECT_SOURCE_DIR})
  if(ARG_GENERATED)
    target_include_directories(${room} PRIVATE ${CMAKE_CURRENT_BINARY_DIR}/generated)
    add_dependencies(${room} ${ARG_GENERATED})
  endif()
  set(libraries qamc5032 qamc5032_inside)
  if(NOT ARG_PUBLIC)
    list(APPEND libraries qamc5032_seam)
  endif()
  foreach(library ${libraries})
    target_sources(${library} PRIVATE $<TARGET_OBJECTS:${room}>)
    target_link_libraries(${library} PRIVATE ${ARG_LIBRARIES})
  endforeach()

  list(TRANSFORM ARG_SOURCES PREPEND ${CMAKE_CURRENT_SOURCE_DIR}/)
  set_property(GLOBAL APPEND PROPERTY VEL_ROOM_SOURCES ${ARG_SOURCES})
  list(JOIN ARG_PUBLIC " " headers)
  list(JOIN ARG_USES " " uses)
  set_property(GLOBAL APPEND_STRING PROPERTY VEL_ROOMS "${name}\t${uses}\t${headers}\n")
endfunction()

# vel_add_room_of_programs(<name> [USES <rooms>...] [HEADERS <files>...]): a directory of programs that use the public
# headers. Its build file gives the reason if they also use rooms without public headers (USES) or single other headers
# (HEADERS).
function(vel_add_room_of_programs name)
  cmake_parse_arguments(ARG "" "" "USES;HEADERS" ${ARGN})
  list(JOIN ARG_USES " " uses)
  list(JOIN ARG_HEADERS " " headers)
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp ${CMAKE_CURRENT_SOURCE_DIR}/*.h)
  set_property(GLOBAL APPEND PROPERTY VEL_ROOM_SOURCES ${sources})
  set_property(GLOBAL APPEND_STRING PROPERTY VEL_ROOMS "${name}\t${uses} public\t${headers}\n")
endfunction()

# vel_check_rooms(): adds the check of all rooms to every build. Call it after all rooms are declared. The build fails
# if a file includes a header of a room that its own room does not list.
function(vel_check_rooms)
  get_property(rooms GLOBAL PROPERTY VEL_ROOMS)
  get_property(sources GLOBAL PROPERTY VEL_ROOM_SOURCES)
  file(GLOB public_headers CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/vel_include/*.h)
  set(table ${PROJECT_BINARY_DIR}/rooms.tsv)
  file(CONFIGURE OUTPUT ${table} CONTENT "${rooms}" @ONLY)
  set(script ${PROJECT_SOURCE_DIR}/cmake/check_rooms.py)
  set(checked ${PROJECT_BINARY_DIR}/rooms.checked)
  add_custom_command(OUTPUT ${checked}
    COMMAND Python3::Interpreter -B ${script} --rooms ${table} --root ${PROJECT_SOURCE_DIR}
    COMMAND ${CMAKE_COMMAND} -E touch ${checked}
    DEPENDS ${script} ${table} ${sources} ${public_headers}
    COMMENT "" VERBATIM)
  add_custom_target(check_rooms ALL DEPENDS ${checked})
  add_dependencies(qamc5032 check_rooms)
endfunction()
