// Finding, loading and using dynamic libraries.
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

bool loadFile(const char* path, void* context) noexcept {
  auto& loading = *static_cast<Loading*>(context);
  loading.library = dlopen(path, RTLD_NOW | RTLD_LOCAL);
  if (loading.library != nullptr) return true;
  // The loader tells no number. A file that is there but refused ends the search.
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
  // The loader takes "" for the program itself.
  if (hasDirectory(name))
    tryPaths(forms, loadFile, &loading);
  else if (*name != '\0')
    tryNames(forms, loadFile, &loading);
  library = loading.library;
  return library != nullptr ? 0 : static_cast<NativeError>(loading.error);
}

// The loader itself looks for names without directory in the system's folders only.
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
