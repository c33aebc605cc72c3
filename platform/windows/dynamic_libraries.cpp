// Finds, loads and unloads dynamic libraries by the system's loader.
#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <array>
#include <cstring>

#include "platform/dynamic_libraries.h"
#include "platform/launching.h"
#include "platform/windows/native_text.h"

namespace vel::platform {

namespace {

/// Loads without the system's dialog about invalid library files.
template <typename Load>
NativeError loadQuietly(Load load, void*& library) noexcept {
  DWORD previous = 0;
  SetThreadErrorMode(SEM_FAILCRITICALERRORS, &previous);
  library = load();
  const DWORD error = library != nullptr ? DWORD{ERROR_SUCCESS} : GetLastError();
  SetThreadErrorMode(previous, nullptr);
  return error;
}

/// The full path of an ASCII name in the folder of the module that contains this code.
class PathBesideThisLibrary {
 public:
  explicit PathBesideThisLibrary(const char* name) noexcept {
    constexpr DWORD kThisModule =
        GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
    HMODULE self = nullptr;
    GetModuleHandleExW(kThisModule, reinterpret_cast<LPCWSTR>(&freeLibrary), &self);
    std::size_t length = GetModuleFileNameW(self, text_.data(), static_cast<DWORD>(text_.size()));
    while (length > 0 && text_[length - 1] != L'\\') --length;
    fits_ = length > 0 && length + std::strlen(name) < text_.size();
    if (!fits_) return;
    for (; *name != '\0'; ++name) text_[length++] = static_cast<unsigned char>(*name);
    text_[length] = L'\0';
  }
  bool fits() const noexcept { return fits_; }
  const WCHAR* get() const noexcept { return text_.data(); }

 private:
  // The longest path that the system supports, in UTF-16 units.
  static constexpr std::size_t kMaxLoaderPath = 0x8000;

  bool fits_;
  std::array<WCHAR, kMaxLoaderPath> text_;
};

}  // namespace

bool searchLibrary(const char* name, char* out, std::size_t capacity) noexcept {
  return searchProgram(name, out, capacity);
}

NativeError loadLibrary(const char* name, void*& library) noexcept {
  const WideName wide(name);
  if (!wide.isValid()) return wide.error();
  return loadQuietly([&wide] { return LoadLibraryW(wide.get()); }, library);
}

NativeError loadInstalledLibrary(const char* name, void*& library) noexcept {
  constexpr DWORD kFolders = LOAD_LIBRARY_SEARCH_APPLICATION_DIR | LOAD_LIBRARY_SEARCH_SYSTEM32;
  const PathBesideThisLibrary beside(name);
  const WideName wide(name);
  const auto load = [&]() noexcept {
    // The library's own dependencies are searched in the same folders.
    const HMODULE found =
        beside.fits() ? LoadLibraryExW(beside.get(), nullptr, LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR | kFolders)
                      : nullptr;
    return found != nullptr ? found : LoadLibraryExW(wide.get(), nullptr, kFolders);
  };
  return loadQuietly(load, library);
}

Procedure findProcedure(void* library, const char* name) noexcept {
  const FARPROC procedure = GetProcAddress(static_cast<HMODULE>(library), name);
  return reinterpret_cast<Procedure>(reinterpret_cast<void (*)()>(procedure));
}

void freeLibrary(void* library) noexcept {
  FreeLibrary(static_cast<HMODULE>(library));
}

}  // namespace vel::platform
