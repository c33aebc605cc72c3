// UTF-8 for all texts that a program exchanges with the system.
//
// Windows passes texts in the ANSI code page of the process unless a program asks for more. In Western Europe
// a file with a Cyrillic name cannot be opened then, and arguments arrive with question marks. A program that
// calls velUseUtf8, or whose manifest sets the active code page to UTF-8 (see the CMake function
// qamc5032_utf8_manifest), has all characters:
//
//   int main(int argc, char** argv) {
//     velUseUtf8();
//     argv = velUtf8Arguments(&argc, argv);
//
// On Linux names are bytes and the locale decides about texts; there these functions change nothing.
#ifndef VEL_UTF8_H_
#define VEL_UTF8_H_

#include "vel_export.h"

/// From now on all texts of char that this library exchanges with Windows are UTF-8: names of files and
/// libraries, environment variables, command lines of started programs, messages from catalogs, and text at
/// a console. VelClCCSID::getSystemCCSID and, if it was not called before, getConsoleCCSID return 1208. What
/// std::cout, std::cerr and std::clog write to a console appears correctly whatever the console's code page
/// is, and std::cin reads UTF-8 from a console; files and pipes get and give bytes as before.
///
/// Call it once, at the start of main, before other threads run and before this library is used otherwise:
/// texts that the program already has stay as they are. It cannot be undone. The C and C++ runtime is not
/// changed: std::getenv, std::fopen and std::ifstream use the ANSI code page as before, unless a manifest
/// sets another one. Does nothing on Linux.
VEL_C_API void velUseUtf8(void);

/// Whether texts that this library exchanges with the system are UTF-8: after velUseUtf8, with a manifest
/// that sets the active code page to UTF-8, and on Linux if the locale's code set is UTF-8.
VEL_C_API bool velIsUtf8Used(void);

/// Returns the arguments of main in UTF-8, and sets `*count` to their number; a null pointer follows the
/// last. Pass the arguments of main. On Windows, if velIsUtf8Used, the vector is made from the wide command
/// line of the process, split by the rules of the C runtime; wildcards are not expanded. The library owns the
/// vector and its texts, which live until the process ends; the texts may be changed in place. Each call
/// returns the same vector. Otherwise, and on Linux, returns `arguments`, and leaves `*count` unchanged.
/// Returns null, with a count of 0, if memory runs out.
///
/// VelClConsoleUI replaces the arguments of main in this way itself.
VEL_C_API char** velUtf8Arguments(int* count, char** arguments);

#endif
