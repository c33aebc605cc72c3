// Finding the files of message catalog libraries.
#pragma once

#include "platform/system_error.h"

namespace vel::platform {

enum class CatalogOwner {
  ThisLibrary,  ///< found beside this library first, not where another user may have put a file
  Other
};

/// Opens a catalog library's file for reading bytes, see byte_files.h. Fails with ENOENT if there is no such
/// file with contents. Windows: the loader's search, also for libraries that are already loaded. POSIX: a
/// name without directory is looked for beside the program, in the current directory, along PATH, and beside
/// this library, first with its exact spelling and then in any case; a name with a directory is also tried
/// with the extension ".dll" in lower case. This library's own catalog is looked for beside this library,
/// beside the program, along PATH, and only then in the current directory (on Windows, by the loader).
SystemError openCatalog(const char* fileName, CatalogOwner owner, int& descriptor) noexcept;

}  // namespace vel::platform
