// Finds message catalog libraries and opens their files; the system's loader has no part in it.
#include <fcntl.h>

#include <cerrno>

#include "platform/byte_files.h"
#include "platform/catalogs.h"
#include "platform/posix/descriptor.h"
#include "platform/posix/file_search.h"
#include "platform/posix/native_path.h"

namespace vel::platform {

namespace {

/// Regular files with contents only; anything else lets the search go on.
bool openFile(const char* path, void* descriptor) noexcept {
  Descriptor file(retrying([&] { return open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK); }));
  if (!file.isOpen() || bytesLeft(file.get()) == 0) return false;
  *static_cast<int*>(descriptor) = file.release();
  return true;
}

bool search(const char* fileName, unsigned places, int& descriptor) noexcept {
  return searchFile(NameForms(fileName), places, openFile, &descriptor);
}

/// One place after the other, so that the exact spelling at a later one does not win.
bool searchOwn(const char* fileName, int& descriptor) noexcept {
  for (const unsigned place : {kBesideThisLibrary, kBesideProgram, kAlongPath, kInCurrentDirectory})
    if (search(fileName, place, descriptor)) return true;
  return false;
}

}  // namespace

SystemError openCatalog(const char* fileName, CatalogOwner owner, int& descriptor) noexcept {
  bool isFound = false;
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
