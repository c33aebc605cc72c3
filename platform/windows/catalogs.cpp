// Message catalog libraries: the loader finds and checks them, and their file is mapped for reading.
#include <array>

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include "platform/platform.h"

namespace vel::platform {

namespace {

/// The library, or null; nobody is asked about a file that is no library.
HMODULE loadQuietly(const char* fileName) noexcept {
  DWORD previous = 0;
  SetThreadErrorMode(SEM_FAILCRITICALERRORS, &previous);
  const HMODULE module = LoadLibraryA(fileName);
  SetThreadErrorMode(previous, nullptr);
  return module;
}

/// The whole file, which stays mapped without its handles.
const std::uint8_t* mapFile(HANDLE file) noexcept {
  const HANDLE mapping = CreateFileMappingA(file, nullptr, PAGE_READONLY, 0, 0, nullptr);
  if (mapping == nullptr) return nullptr;
  const void* const data = MapViewOfFile(mapping, FILE_MAP_READ, 0, 0, 0);
  CloseHandle(mapping);
  return static_cast<const std::uint8_t*>(data);
}

void mapFileOf(HMODULE module, CatalogImage& image) noexcept {
  std::array<char, 1024> path;
  const DWORD length = GetModuleFileNameA(module, path.data(), static_cast<DWORD>(path.size()));
  if (length == 0 || length == path.size()) return;
  const HANDLE file = CreateFileA(path.data(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_DELETE, nullptr,
                                  OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == INVALID_HANDLE_VALUE) return;
  LARGE_INTEGER size;
  if (GetFileSizeEx(file, &size) != FALSE) {
    image.data = mapFile(file);
    image.sizeInBytes = static_cast<std::size_t>(size.QuadPart);
  }
  CloseHandle(file);
}

}  // namespace

bool openCatalog(const char* fileName, CatalogImage& image) noexcept {
  image = {};
  const HMODULE module = loadQuietly(fileName);
  if (module == nullptr) return false;
  image.module = module;
  mapFileOf(module, image);
  if (image.data != nullptr) return true;
  closeCatalog(image);
  return false;
}

void closeCatalog(CatalogImage& image) noexcept {
  if (image.data != nullptr) UnmapViewOfFile(image.data);
  if (image.module != nullptr) FreeLibrary(static_cast<HMODULE>(image.module));
  image = {};
}

}  // namespace vel::platform
