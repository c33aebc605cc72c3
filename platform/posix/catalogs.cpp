// Finds message catalog libraries and maps them for reading; the system's loader has no part in it.
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "platform/platform.h"
#include "platform/posix/native_path.h"

namespace vel::platform {

namespace {

using PathBuffer = std::array<char, PATH_MAX>;

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

/// The path's directory with its final "/", "" when the path has none.
std::string_view directoryOf(std::string_view path) noexcept {
  return path.substr(0, path.rfind('/') + 1);
}

std::string_view programDirectory(PathBuffer& buffer) noexcept {
  const ssize_t length = readlink("/proc/self/exe", buffer.data(), buffer.size());
  if (length <= 0 || static_cast<std::size_t>(length) == buffer.size()) return {};
  return directoryOf({buffer.data(), static_cast<std::size_t>(length)});
}

std::string_view libraryDirectory() noexcept {
  static const char kInsideThisLibrary = 0;
  Dl_info info{};
  if (dladdr(&kInsideThisLibrary, &info) == 0 || info.dli_fname == nullptr) return {};
  return directoryOf(info.dli_fname);
}

/// Looks for one name, as it is spelled or in any letter case.
struct Search {
  std::string_view name;
  bool ignoreCase;
  CatalogImage& image;

  bool lookIn(std::string_view directory) const noexcept {
    PathBuffer path;
    if (directory.empty() || directory.size() + name.size() + 2 > path.size()) return false;
    char* end = path.data() + directory.copy(path.data(), directory.size());
    *end++ = '/';
    end[name.copy(end, name.size())] = '\0';
    if (ignoreCase) matchSpelling(path.data());
    return openFile(path.data(), image);
  }

  bool lookAlongPath() const noexcept {
    const char* const variable = std::getenv("PATH");
    std::string_view rest = variable == nullptr ? "" : variable;
    while (!rest.empty()) {
      const std::size_t length = std::min(rest.find(':'), rest.size());
      if (lookIn(rest.substr(0, length))) return true;
      rest.remove_prefix(std::min(length + 1, rest.size()));
    }
    return false;
  }

  bool run() const noexcept {
    PathBuffer program;
    return lookIn(programDirectory(program)) || lookIn(".") || lookAlongPath() || lookIn(libraryDirectory());
  }
};

}  // namespace

bool openCatalog(const char* fileName, CatalogImage& image) noexcept {
  image = {};
  if (hasDirectory(fileName)) {
    const NativePath path(fileName);
    return path.fits() && openFile(path.get(), image);
  }
  if (*fileName == '\0') return false;
  // The exact spelling first, everywhere: reading whole directories is slow.
  return Search{fileName, false, image}.run() || Search{fileName, true, image}.run();
}

void closeCatalog(CatalogImage& image) noexcept {
  if (image.data != nullptr) munmap(const_cast<std::uint8_t*>(image.data), image.sizeInBytes);
  image = {};
}

}  // namespace vel::platform
