// Finds message catalog libraries and opens their files as data. The system's loader is not involved:
// catalogs are Windows DLLs on every system.
#include <fcntl.h>

#include <algorithm>
#include <cerrno>
#include <string_view>

#include "base/ascii.h"
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

/// Opens a name that has a directory. Catalogs get their extension in upper case, which Windows does not
/// distinguish: where the name itself does not exist, it is tried in lower case.
bool openInDirectory(const char* fileName, int& descriptor) noexcept {
  const NativePath path(fileName);
  if (!path.fits()) return false;
  if (openFile(path.get(), &descriptor)) return true;
  constexpr std::string_view kExtension = ".DLL";
  const std::string_view name(path.get());
  PathBuffer lower;
  if (!name.ends_with(kExtension) || name.size() >= lower.size()) return false;
  lower[name.copy(lower.data(), name.size())] = '\0';
  std::transform(lower.data() + name.size() - kExtension.size(), lower.data() + name.size(),
                 lower.data() + name.size() - kExtension.size(), toAsciiLower);
  return openFile(lower.data(), &descriptor);
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
    isFound = openInDirectory(fileName, descriptor);
  } else if (*fileName != '\0') {
    isFound = owner == CatalogOwner::ThisLibrary
                  ? searchOwn(fileName, descriptor)
                  : search(fileName, kBesideProgram | kInCurrentDirectory | kAlongPath | kBesideThisLibrary,
                           descriptor);
  }
  return isFound ? 0 : ENOENT;
}

}  // namespace vel::platform
