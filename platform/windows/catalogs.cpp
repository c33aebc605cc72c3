// Message catalog libraries: the loader finds them and maps their file for reading.
#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include "platform/platform.h"

namespace vel::platform {

namespace {

/// The library, or null; nobody is asked about a file that is no library. It is loaded as data: none of its
/// code runs, so that a damaged or foreign catalog does no harm.
HMODULE loadQuietly(const char* fileName) noexcept {
  DWORD previous = 0;
  SetThreadErrorMode(SEM_FAILCRITICALERRORS, &previous);
  const HMODULE module = LoadLibraryExA(fileName, nullptr, LOAD_LIBRARY_AS_DATAFILE);
  SetThreadErrorMode(previous, nullptr);
  return module;
}

/// The two lowest bits of a data module's handle tell how it is mapped; the rest is its address.
constexpr std::uintptr_t kHandleBits = 3;
constexpr std::uintptr_t kMappedAsFile = 1;

/// The bytes of the module's file, up to the end of the last page. A module that is mapped as a program, as
/// happens when the system already has it in that form, is not readable as a file.
bool fileBytesOf(HMODULE module, CatalogImage& image) noexcept {
  const auto handle = reinterpret_cast<std::uintptr_t>(module);
  if ((handle & kHandleBits) != kMappedAsFile) return false;
  const void* data = reinterpret_cast<const void*>(handle & ~kHandleBits);
  MEMORY_BASIC_INFORMATION region;
  if (VirtualQuery(data, &region, sizeof region) == 0) return false;
  image.data = static_cast<const std::uint8_t*>(data);
  image.sizeInBytes = region.RegionSize;
  return true;
}

}  // namespace

bool openCatalog(const char* fileName, CatalogImage& image) noexcept {
  image = {};
  const HMODULE module = loadQuietly(fileName);
  if (module == nullptr) return false;
  image.module = module;
  if (fileBytesOf(module, image)) return true;
  closeCatalog(image);
  return false;
}

void closeCatalog(CatalogImage& image) noexcept {
  if (image.module != nullptr) FreeLibrary(static_cast<HMODULE>(image.module));
  image = {};
}

}  // namespace vel::platform
