// Finding, loading and using dynamic libraries.
#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include "platform/platform.h"

namespace vel::platform {

bool searchLibrary(const char* name, char* out, std::size_t capacity) noexcept {
  return searchProgram(name, out, capacity);
}

void* loadLibrary(const char* name, std::uint32_t& error) noexcept {
  DWORD previous = 0;
  SetThreadErrorMode(SEM_FAILCRITICALERRORS, &previous);
  const HMODULE library = LoadLibraryA(name);
  error = library != nullptr ? DWORD{ERROR_SUCCESS} : GetLastError();
  SetThreadErrorMode(previous, nullptr);
  return library;
}

Procedure findProcedure(void* library, const char* name) noexcept {
  const FARPROC procedure = GetProcAddress(static_cast<HMODULE>(library), name);
  return reinterpret_cast<Procedure>(reinterpret_cast<void (*)()>(procedure));
}

void freeLibrary(void* library) noexcept {
  FreeLibrary(static_cast<HMODULE>(library));
}

}  // namespace vel::platform
