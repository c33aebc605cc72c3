// Finds, loads and unloads dynamic libraries. Which names and places are tried is file_search.cpp's work.
#include <dlfcn.h>
#include <unistd.h>

#include <cerrno>

#include "platform/dynamic_libraries.h"
#include "platform/posix/file_search.h"
#include "platform/posix/native_path.h"

namespace vel::platform {

namespace {

struct Loading {
  void* library = nullptr;
  int error = ENOENT;
};

/// A visitor: loads the library, or ends the search at a file that exists but cannot be loaded.
bool loadFile(const char* path, void* context) noexcept {
  auto& loading = *static_cast<Loading*>(context);
  loading.library = dlopen(path, RTLD_NOW | RTLD_LOCAL);
  if (loading.library != nullptr) return true;
  // dlopen reports errors as text only, so the number is derived. A file that exists but was refused ends the
  // search: loading another one instead would hide the mistake.
  if (!isRegularFile(path)) return false;
  loading.error = access(path, R_OK) == 0 ? ENOEXEC : errno;
  return true;
}

}  // namespace

bool searchLibrary(const char* name, char* out, std::size_t capacity) noexcept {
  FoundPath found{out, capacity};
  const PathVisitor visit = [](const char* path, void* context) noexcept {
    return isRegularFile(path) && static_cast<FoundPath*>(context)->set(path);
  };
  return searchFile(NameForms::ofLibrary(name), kBesideProgram | kInCurrentDirectory | kAlongPath, visit,
                    &found);
}

NativeError loadLibrary(const char* name, void*& library) noexcept {
  Loading loading;
  const NameForms forms = NameForms::ofLibrary(name);
  // dlopen("") would return the program itself.
  if (hasDirectory(name))
    tryPaths(forms, loadFile, &loading);
  else if (*name != '\0')
    tryNames(forms, loadFile, &loading);
  library = loading.library;
  return library != nullptr ? 0 : static_cast<NativeError>(loading.error);
}

// For a name without a directory, dlopen searches only the directories configured for libraries: neither the
// current directory nor PATH.
NativeError loadInstalledLibrary(const char* name, void*& library) noexcept {
  return loadLibrary(name, library);
}

Procedure findProcedure(void* library, const char* name) noexcept {
  return reinterpret_cast<Procedure>(dlsym(library, name));
}

void freeLibrary(void* library) noexcept {
  dlclose(library);
}

}  // namespace vel::platform
