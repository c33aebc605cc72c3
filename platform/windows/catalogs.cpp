// Finds message catalog libraries and opens their files for reading bytes. The loader searches for them;
// only this library's own catalog is searched for here first.
//
// The loader knows which file it would load, but gives only a mapped module. So the catalog is loaded as
// data, which runs none of its code; the name of the mapped file is queried, and that file is opened and the
// module freed. The bytes are read from the file and not from the mapping, because a library that is already
// loaded as code is laid out differently in memory.
#define PSAPI_VERSION 2
#define WIN32_LEAN_AND_MEAN
#include <windows.h>
// The other system headers need windows.h, which is therefore first.
#include <fcntl.h>
#include <io.h>
#include <psapi.h>
#include <winternl.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <string_view>

#include "platform/byte_files.h"
#include "platform/catalogs.h"
#include "platform/windows/file_words.h"
#include "platform/windows/native_text.h"

namespace vel::platform {

namespace {

constexpr DWORD kPathCapacity = 4096;

using PathBuffer = std::array<wchar_t, kPathCapacity>;

/// Suppresses the system's dialogs about missing disks and invalid library files.
class QuietErrors {
 public:
  QuietErrors() noexcept { SetThreadErrorMode(SEM_FAILCRITICALERRORS, &previous_); }
  QuietErrors(const QuietErrors&) = delete;
  QuietErrors& operator=(const QuietErrors&) = delete;
  ~QuietErrors() { SetThreadErrorMode(previous_, nullptr); }

 private:
  DWORD previous_ = 0;
};

/// Adopts the handle: returns a descriptor that owns it. Returns -1 for an invalid handle, an empty file, or
/// if no descriptor is free; the handle is closed then.
int adoptAsDescriptor(HANDLE file) noexcept {
  if (file == INVALID_HANDLE_VALUE) return -1;
  const int descriptor =
      _open_osfhandle(reinterpret_cast<std::intptr_t>(file), _O_RDONLY | _O_BINARY | _O_NOINHERIT);
  // A failed _open_osfhandle leaves the handle to the caller.
  if (descriptor == -1) {
    CloseHandle(file);
  } else if (bytesLeft(descriptor) == 0) {
    closeDescriptor(descriptor);
    return -1;
  }
  return descriptor;
}

/// Opens a file by its native name, such as "\Device\HarddiskVolume1\...", which GetMappedFileName returns
/// and CreateFile does not accept.
HANDLE openSystemName(wchar_t* text, DWORD length) noexcept {
  const auto size = static_cast<USHORT>(length * sizeof(wchar_t));
  UNICODE_STRING name{size, size, text};
  OBJECT_ATTRIBUTES attributes;
  InitializeObjectAttributes(&attributes, &name, 0, nullptr, nullptr);
  IO_STATUS_BLOCK status{};
  HANDLE file = INVALID_HANDLE_VALUE;
  const NTSTATUS result =
      NtCreateFile(&file, GENERIC_READ | SYNCHRONIZE, &attributes, &status, nullptr, 0, kShareAll, FILE_OPEN,
                   FILE_SYNCHRONOUS_IO_NONALERT | FILE_NON_DIRECTORY_FILE, nullptr, 0);
  return NT_SUCCESS(result) ? file : INVALID_HANDLE_VALUE;
}

/// The two lowest bits of a module handle tell how it is mapped; the rest is its address.
constexpr std::uintptr_t kHandleBits = 3;

/// Opens the file that a module is mapped from.
HANDLE openFileOf(HMODULE module) noexcept {
  PathBuffer path;
  void* const address = reinterpret_cast<void*>(reinterpret_cast<std::uintptr_t>(module) & ~kHandleBits);
  const DWORD length = GetMappedFileNameW(GetCurrentProcess(), address, path.data(), kPathCapacity);
  // A name that fills the buffer may have been truncated.
  return length == 0 || length >= kPathCapacity - 1 ? INVALID_HANDLE_VALUE
                                                    : openSystemName(path.data(), length);
}

/// Lets the loader find the file. It is mapped as data, so that none of its code runs.
int openWhereLoaderFinds(const wchar_t* fileName) noexcept {
  const HMODULE module = LoadLibraryExW(fileName, nullptr, LOAD_LIBRARY_AS_DATAFILE);
  if (module == nullptr) return -1;
  const int descriptor = adoptAsDescriptor(openFileOf(module));
  FreeLibrary(module);
  return descriptor;
}

int openIn(std::wstring_view directory, std::wstring_view fileName) noexcept {
  PathBuffer path;
  if (directory.empty() || directory.size() + fileName.size() + 2 > kPathCapacity) return -1;
  wchar_t* const name = std::copy(directory.begin(), directory.end(), path.data());
  *name = L'\\';
  *std::copy(fileName.begin(), fileName.end(), name + 1) = L'\0';
  return adoptAsDescriptor(CreateFileW(path.data(), GENERIC_READ, kShareAll, nullptr, OPEN_EXISTING,
                                       FILE_ATTRIBUTE_NORMAL, nullptr));
}

/// Opens the catalog in the directory of a module; a null module is the program.
int openBeside(HMODULE module, const wchar_t* fileName) noexcept {
  PathBuffer path;
  const DWORD length = GetModuleFileNameW(module, path.data(), kPathCapacity);
  if (length == 0 || length == kPathCapacity) return -1;
  const std::wstring_view full(path.data(), length);
  const std::size_t separator = full.rfind(L'\\');
  return separator == std::wstring_view::npos ? -1 : openIn(full.substr(0, separator), fileName);
}

int openAlongPath(const wchar_t* fileName) noexcept {
  WideBuffer variable;
  const DWORD size = systemVariable(L"PATH", variable);
  std::wstring_view rest(variable.get(), size);
  while (!rest.empty()) {
    const std::size_t length = std::min(rest.find(L';'), rest.size());
    const int descriptor = openIn(rest.substr(0, length), fileName);
    if (descriptor != -1) return descriptor;
    rest.remove_prefix(std::min(length + 1, rest.size()));
  }
  return -1;
}

/// Returns null, which openBeside takes for the program, if the system fails.
HMODULE thisLibrary() noexcept {
  static const char kInsideThisLibrary = 0;
  HMODULE module = nullptr;
  GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                     reinterpret_cast<const wchar_t*>(&kInsideThisLibrary), &module);
  return module;
}

/// Opens this library's own catalog beside the library, beside the program, or along PATH. Called before the
/// loader's search, which has the current directory, where another user may have put a file, before PATH.
int openOwnCatalog(const wchar_t* fileName) noexcept {
  int descriptor = openBeside(thisLibrary(), fileName);
  if (descriptor == -1) descriptor = openBeside(nullptr, fileName);
  return descriptor != -1 ? descriptor : openAlongPath(fileName);
}

}  // namespace

SystemError openCatalog(const char* fileName, CatalogOwner owner, int& descriptor) noexcept {
  const WideName name(fileName);
  if (!name.isValid()) return errnoOf(name.error());
  const QuietErrors quiet;
  descriptor = owner == CatalogOwner::ThisLibrary ? openOwnCatalog(name.get()) : -1;
  if (descriptor == -1) descriptor = openWhereLoaderFinds(name.get());
  return descriptor != -1 ? 0 : ENOENT;
}

}  // namespace vel::platform
