// Finds message catalog libraries and opens their files as data. The system's loader is not involved:
// catalogs are Windows DLLs on every system.
#include <fcntl.h>

#include <cerrno>

#include "platform/byte_files.h"
#include "platform/catalogs.h"
#include "platform/posix/descriptor.h"
#include "platform/posix/file_search.h"
#include "platform/posix/native_path.h"

namespace vel::platform {

namespace {

/// A visitor for searchFile. Accepts regular files with contents; anything else continues the search.
bool openFile(const char* path, void* descriptor) noexcept {
  Descriptor file(retrying([&] { return open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK); }));
  if (!file.isOpen() || bytesLeft(file.get()) == 0) return false;
  *static_cast<int*>(descriptor) = file.release();
  return true;
}

bool search(const char* fileName, unsigned places, int& descriptor) noexcept {
  return searchFile(NameForms(fileName), places, openFile, &descriptor);
}

/// Searches the places one by one, the safest first. A single search would try the exact spelling everywhere
/// before it ignores case, so a file in the current directory could win over the installed one.
bool searchOwn(const char* fileName, int& descriptor) noexcept {
  for (const unsigned place : {kBesideThisLibrary, kBesideProgram, kAlongPath, kInCurrentDirectory})
    if (search(fileName, place, descriptor)) return true;
  return false;
}

}  // namespace

SystemError openCatalog(const char* fileName, CatalogOwner owner, int& descriptor) noexcept {
  bool isFound = false;
  // A name with a directory is opened where it says and nowhere else.
  if (hasDirectory(fileName)) {
    const NativePath path(fileName);
    isFound = path.fits() && openFile(path.get(), &descriptor);
  } else if (*fileName != '\0') {
    isFound = owner == CatalogOwner::ThisLibrary
                  ? searchOwn(fileName, descriptor)
                  : search(fileName, kBesideProgram | kInCurrentDirectory | kAlongPath | kBesideThisLibrary,
                           descriptor);
  }
  return isFound ? 0 : ENOENT;
}

}  // namespace vel::platform
