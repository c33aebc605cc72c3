// ICU puts its version into the names of its libraries and of their functions: version 72 is libicuuc.so.72
// with ucnv_open_72. No name is known beforehand, so both are formatted and tried:
//
//   library            functions tried
//   with a version     plain, those of 3.2, those of this version
//   without one        plain, those of 3.2, then of every version, newest first
//
// The version on the build machine is tried first, because the library was tested with it.
#include "codepage/icu/icu_library.h"

#include <cstdio>

namespace vel::codepage {

namespace {

/// Versions count 3.2, ... 4.8, 49, 50, ...; here, and in file names, they are written without the point.
constexpr int kOldestVersion = 32;
constexpr int kFirstPlainVersion = 49;
constexpr int kNewestVersion = 99;
constexpr int kAnyVersion = 0;

/// Library names without a version. Windows includes ICU as icu.dll, whose functions have plain names.
constexpr const char* kPlainNames[] = {"icu.dll", "icuuc.dll", "libicuuc.so"};
struct VersionedName {
  const char* before;
  const char* after;
};
constexpr VersionedName kVersionedNames[] = {{"icuuc", ".dll"}, {"libicuuc.so.", ""}};

using Name = char[40];

/// Writes the suffix of a version's function names: "_72", or "_3_2" below version 49.
void formatSuffix(Name& out, int version) {
  if (version >= kFirstPlainVersion)
    std::snprintf(out, sizeof out, "_%d", version);
  else
    std::snprintf(out, sizeof out, "_%d_%d", version / 10, version % 10);
}

/// Binds functions of one library under one suffix.
class Binder {
 public:
  Binder(const LibraryLoader& loader, void* library, const char* suffix)
      : loader_(loader), library_(library), suffix_(suffix) {}

  template <typename Function>
  bool bind(const char* name, Function& function) const {
    char full[2 * sizeof(Name)];
    std::snprintf(full, sizeof full, "%s%s", name, suffix_);
    function = reinterpret_cast<Function>(reinterpret_cast<void (*)()>(loader_.find(library_, full)));
    return function != nullptr;
  }

  bool bindAll(IcuFunctions& functions) const {
    return bind("ucnv_open", functions.open) && bind("ucnv_openCCSID", functions.openCcsid) &&
           bind("ucnv_close", functions.close) && bind("ucnv_setFallback", functions.setFallback) &&
           bind("ucnv_toUnicode", functions.toUnicode) && bind("ucnv_fromUnicode", functions.fromUnicode) &&
           bind("ucnv_getMaxCharSize", functions.getMaxCharSize);
  }

 private:
  const LibraryLoader& loader_;
  void* library_;
  const char* suffix_;
};

bool bindVersion(const LibraryLoader& loader, void* library, int version, IcuFunctions& functions) {
  Name suffix;
  formatSuffix(suffix, version);
  return Binder(loader, library, suffix).bindAll(functions);
}

bool bindAnyVersion(const LibraryLoader& loader, void* library, IcuFunctions& functions) {
  for (int version = kNewestVersion; version > kOldestVersion; --version)
    if (bindVersion(loader, library, version, functions)) return true;
  return false;
}

/// Unloads the library again if one of the functions is missing, so that the search can go on.
bool bindLibrary(const LibraryLoader& loader, const char* name, int version, IcuFunctions& functions) {
  void* const library = loader.load(name);
  if (library == nullptr) return false;
  const bool isBound = Binder(loader, library, "").bindAll(functions) ||
                       bindVersion(loader, library, kOldestVersion, functions) ||
                       (version == kAnyVersion ? bindAnyVersion(loader, library, functions)
                                               : bindVersion(loader, library, version, functions));
  if (!isBound) loader.free(library);
  return isBound;
}

bool bindVersionedLibrary(const LibraryLoader& loader, int version, IcuFunctions& functions) {
  for (const VersionedName& parts : kVersionedNames) {
    Name name;
    std::snprintf(name, sizeof name, "%s%d%s", parts.before, version, parts.after);
    if (bindLibrary(loader, name, version, functions)) return true;
  }
  return false;
}

void* loadLibrary(const char* name) {
  void* library = nullptr;
  return platform::loadInstalledLibrary(name, library) == 0 ? library : nullptr;
}

}  // namespace

bool bindIcu(const LibraryLoader& loader, int ownVersion, IcuFunctions& functions) noexcept {
  if (ownVersion != kAnyVersion && bindVersionedLibrary(loader, ownVersion, functions)) return true;
  for (const char* const name : kPlainNames)
    if (bindLibrary(loader, name, kAnyVersion, functions)) return true;
  for (int version = kNewestVersion; version >= kOldestVersion; --version)
    if (version != ownVersion && bindVersionedLibrary(loader, version, functions)) return true;
  return false;
}

const IcuFunctions* installedIcu() {
  // A local static: concurrent first calls wait for one search.
  struct Installed {
    IcuFunctions functions{};
    bool isThere =
        bindIcu({&loadLibrary, &platform::findProcedure, &platform::freeLibrary}, VEL_ICU_VERSION, functions);
  };
  static const Installed installed;
  return installed.isThere ? &installed.functions : nullptr;
}

}  // namespace vel::codepage
