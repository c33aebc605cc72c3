// Finds message catalog libraries and maps them for reading; the system's loader has no part in it.
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/platform.h"
#include "platform/posix/file_search.h"
#include "platform/posix/native_path.h"

namespace vel::platform {

namespace {

/// Regular files with contents only.
bool mapFile(int file, CatalogImage& image) noexcept {
  struct stat status;
  if (fstat(file, &status) != 0 || !S_ISREG(status.st_mode) || status.st_size <= 0) return false;
  const auto size = static_cast<std::size_t>(status.st_size);
  void* const data = mmap(nullptr, size, PROT_READ, MAP_PRIVATE, file, 0);
  if (data == MAP_FAILED) return false;
  image = {nullptr, static_cast<const std::uint8_t*>(data), size};
  return true;
}

bool openFile(const char* path, CatalogImage& image) noexcept {
  const int file = open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (file < 0) return false;
  const bool mapped = mapFile(file, image);
  close(file);
  return mapped;
}

bool takeFile(const char* path, void* image) noexcept {
  return openFile(path, *static_cast<CatalogImage*>(image));
}

}  // namespace

bool openCatalog(const char* fileName, CatalogImage& image) noexcept {
  image = {};
  if (hasDirectory(fileName)) {
    const NativePath path(fileName);
    return path.fits() && openFile(path.get(), image);
  }
  if (*fileName == '\0') return false;
  return searchFile(NameForms(fileName),
                    kBesideProgram | kInCurrentDirectory | kAlongPath | kBesideThisLibrary, takeFile, &image);
}

void closeCatalog(CatalogImage& image) noexcept {
  if (image.data != nullptr) munmap(const_cast<std::uint8_t*>(image.data), image.sizeInBytes);
  image = {};
}

}  // namespace vel::platform
