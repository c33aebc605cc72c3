// Finding, loading and using dynamic libraries.
#pragma once

#include <cstddef>

#include "platform/system_error.h"

namespace vel::platform {

using Procedure = int (*)();

/// Writes the full path of a library given without directory, NUL-terminated. Windows: the system's search.
/// POSIX: the program's directory, the current directory, then PATH; "x.DLL" is looked for as given, then as
/// "x.so" and "libx.so". Returns false if it is not found or does not fit.
bool searchLibrary(const char* name, char* out, std::size_t capacity) noexcept;
/// Loads a library; POSIX tries the three names of searchLibrary. Suppresses the system's dialogs about
/// invalid files.
NativeError loadLibrary(const char* name, void*& library) noexcept;
/// Loads a library by an ASCII name without directory. Searches only where libraries are installed, never in
/// the current directory or along PATH. Windows: the folder of this library, that of the program, the
/// system's.
NativeError loadInstalledLibrary(const char* name, void*& library) noexcept;
/// Returns null if the library does not export a procedure of this name.
Procedure findProcedure(void* library, const char* name) noexcept;
void freeLibrary(void* library) noexcept;

}  // namespace vel::platform
