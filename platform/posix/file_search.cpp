// Derives the forms of a program's or library's name and tries them in the places that are searched.
#include "platform/posix/file_search.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <initializer_list>

#include "base/ascii.h"
#include "platform/linux/privileges.h"
#include "platform/posix/native_path.h"
#include "platform/posix/own_files.h"

namespace vel::platform {

namespace {

/// Returns the length of a name's directory in either style, including the final separator or drive.
std::size_t lengthOfDirectory(std::string_view name) noexcept {
  const std::size_t separator = name.find_last_of("/\\");
  if (separator != std::string_view::npos) return separator + 1;
  const bool hasDrive = name.size() >= 2 && isAsciiLetter(name[0]) && name[1] == ':';
  return hasDrive ? 2 : 0;
}

/// Concatenates the pieces into a NUL-terminated string. False if they do not fit.
bool join(std::initializer_list<std::string_view> pieces, PathBuffer& path) noexcept {
  std::size_t length = 0;
  for (const std::string_view piece : pieces) {
    if (length + piece.size() >= path.size()) return false;
    length += piece.copy(path.data() + length, piece.size());
  }
  path[length] = '\0';
  return true;
}

/// Searches for one form, as it is spelled or in any case.
struct Search {
  const NameForm& form;
  bool ignoreCase;
  PathVisitor visit;
  void* context;

  bool tryDirectory(std::string_view directory) const noexcept {
    PathBuffer path;
    const std::string_view separator = directory.ends_with('/') ? "" : "/";
    if (directory.empty() || !join({directory, separator, form.prefix, form.stem, form.suffix}, path))
      return false;
    if (ignoreCase) matchSpelling(path.data());
    return visit(path.data(), context);
  }

  bool tryAlongPath() const noexcept {
    // Empty elements, which mean the current directory to shells, are skipped: tryDirectory refuses "".
    const char* const variable = std::getenv("PATH");
    std::string_view rest = variable == nullptr ? "" : variable;
    while (!rest.empty()) {
      const std::size_t length = std::min(rest.find(':'), rest.size());
      if (tryDirectory(rest.substr(0, length))) return true;
      rest.remove_prefix(std::min(length + 1, rest.size()));
    }
    return false;
  }

  bool run(unsigned places) const noexcept {
    PathBuffer program;
    return ((places & kBesideProgram) != 0 && tryDirectory(programDirectory(program))) ||
           ((places & kInCurrentDirectory) != 0 && tryDirectory(".")) ||
           ((places & kAlongPath) != 0 && tryAlongPath()) ||
           ((places & kBesideThisLibrary) != 0 && tryDirectory(libraryDirectory()));
  }
};

}  // namespace

std::string_view directoryOf(std::string_view path) noexcept {
  return path.substr(0, path.rfind('/') + 1);
}

bool copyDirectoryOf(std::string_view path, PathBuffer& directory) noexcept {
  const std::string_view found = directoryOf(path);
  return join({found.empty() ? "." : found}, directory);
}

NameForms::NameForms(std::string_view name) noexcept : forms_{}, count_(1) {
  const std::size_t length = lengthOfDirectory(name);
  forms_[0] = {name.substr(0, length), "", name.substr(length), ""};
}

void NameForms::add(std::string_view prefix, std::string_view stem, std::string_view suffix) noexcept {
  forms_[count_++] = {forms_[0].directory, prefix, stem, suffix};
}

bool NameForms::endsIn(std::string_view extension) const noexcept {
  const std::string_view name = forms_[0].stem;
  return name.size() > extension.size() &&
         std::equal(extension.rbegin(), extension.rend(), name.rbegin(),
                    [](char a, char b) { return toAsciiUpper(a) == toAsciiUpper(b); });
}

NameForms NameForms::ofProgram(std::string_view name) noexcept {
  NameForms forms(name);
  const std::string_view stem = forms.forms_[0].stem;
  if (forms.endsIn(".EXE")) forms.add("", stem.substr(0, stem.size() - 4), "");
  return forms;
}

NameForms NameForms::ofLibrary(std::string_view name) noexcept {
  NameForms forms(name);
  if (!forms.endsIn(".DLL")) return forms;
  const std::string_view stem = forms.forms_[0].stem.substr(0, forms.forms_[0].stem.size() - 4);
  forms.add("", stem, ".so");
  forms.add("lib", stem, ".so");
  return forms;
}

bool searchFile(const NameForms& forms, unsigned places, PathVisitor visit, void* context) noexcept {
  // The caller of a setuid program chooses both places, and could plant a library there.
  if ((places & kAlsoPrivileged) == 0 && isPrivileged()) places &= ~(kInCurrentDirectory | kAlongPath);
  // Try the exact spelling everywhere first: ignoring case means reading whole directories.
  for (const bool ignoreCase : {false, true})
    for (const NameForm& form : forms)
      if (Search{form, ignoreCase, visit, context}.run(places)) return true;
  return false;
}

bool tryNames(const NameForms& forms, PathVisitor visit, void* context) noexcept {
  for (const NameForm& form : forms) {
    PathBuffer name;
    if (join({form.directory, form.prefix, form.stem, form.suffix}, name) && visit(name.data(), context))
      return true;
  }
  return false;
}

bool tryPaths(const NameForms& forms, PathVisitor visit, void* context) noexcept {
  struct Native {
    PathVisitor visit;
    void* context;
  } native{visit, context};
  const PathVisitor visitNative = [](const char* name, void* of) noexcept {
    const NativePath path(name);
    if (!path.fits()) return false;
    const auto& [visitor, its] = *static_cast<const Native*>(of);
    PathBuffer rooted;
    // dlopen and exec search for a name without "/" along their own paths.
    const std::string_view start = std::strchr(path.get(), '/') == nullptr ? "./" : "";
    return join({start, path.get()}, rooted) && visitor(rooted.data(), its);
  };
  return tryNames(forms, visitNative, &native);
}

bool isRegularFile(const char* path) noexcept {
  struct stat status;
  return stat(path, &status) == 0 && S_ISREG(status.st_mode);
}

bool FoundPath::set(const char* path) const noexcept {
  PathBuffer current{};
  if (*path != '/') {
    // The search adds "./", which the caller does not expect in a full path.
    if (std::strncmp(path, "./", 2) == 0) path += 2;
    if (getcwd(current.data(), current.size()) == nullptr) return false;
  }
  const std::string_view directory(current.data());
  const std::string_view separator = *path == '/' || directory.ends_with('/') ? "" : "/";
  PathBuffer full;
  if (!join({directory, separator, path}, full)) return false;
  const std::size_t length = std::strlen(full.data());
  if (length >= capacity) return false;
  std::memcpy(out, full.data(), length + 1);
  return true;
}

}  // namespace vel::platform
