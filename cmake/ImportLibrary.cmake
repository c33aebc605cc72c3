# qamc5032.lib: the import library for linkers of the other C++ ABI on Windows. It has only the plain functions, because
# names and layouts of classes depend on the compiler that built this library.
find_program(VEL_DLLTOOL NAMES llvm-dlltool llvm-dlltool-14)
if(NOT VEL_DLLTOOL)
  message(FATAL_ERROR "llvm-dlltool not found: run ./dev setup")
endif()
file(GLOB public_headers CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/vel_include/*.h)
set(plain_def ${PROJECT_BINARY_DIR}/plain_functions.def)
set(plain_lib ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/qamc5032.lib)
add_custom_command(OUTPUT ${plain_lib}
  COMMAND Python3::Interpreter -B ${PROJECT_SOURCE_DIR}/cmake/public_names.py
          --headers ${PROJECT_SOURCE_DIR}/vel_include --def ${plain_def}
  COMMAND ${VEL_DLLTOOL} -m i386:x86-64 -d ${plain_def} -l ${plain_lib}
  DEPENDS ${PROJECT_SOURCE_DIR}/cmake/public_names.py ${public_headers}
  VERBATIM)
add_custom_target(plain_import_library ALL DEPENDS ${plain_lib})
