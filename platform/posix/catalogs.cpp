// Finds message catalog libraries and opens their files; the system's loader has no part in it.
#include <fcntl.h>

#include <cerrno>

#include "platform/byte_files.h"
#include "platform/platform.h"
#include "platform/posix/file_search.h"
#include "platform/posix/native_path.h"

namespace vel::platform {

namespace {

/// Regular files with contents only; anything else lets the search go on.
bool openFile(const char* path, void* descriptor) noexcept {
  int file = -1;
  do file = open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  while (file == -1 && errno == EINTR);
  if (file == -1) return false;
  if (bytesLeft(file) == 0) {
    closeDescriptor(file);
    return false;
  }
  *static_cast<int*>(descriptor) = file;
  return true;
}

bool search(const char* fileName, unsigned places, int& descriptor) noexcept {
  return searchFile(NameForms(fileName), places, openFile, &descriptor);
}

}  // namespace

int openCatalog(const char* fileName, CatalogOwner owner) noexcept {
  int descriptor = -1;
  if (hasDirectory(fileName)) {
    const NativePath path(fileName);
    if (path.fits()) openFile(path.get(), &descriptor);
    return descriptor;
  }
  if (*fileName == '\0') return -1;
  if (owner == CatalogOwner::ThisLibrary) {
    // One place after the other, so that a better spelling at a later one does not win.
    for (const unsigned place : {kBesideThisLibrary, kBesideProgram, kAlongPath, kInCurrentDirectory})
      if (search(fileName, place, descriptor)) return descriptor;
    return -1;
  }
  search(fileName, kBesideProgram | kInCurrentDirectory | kAlongPath | kBesideThisLibrary, descriptor);
  return descriptor;
}

}  // namespace vel::platform
