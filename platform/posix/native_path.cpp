// Translates backslash names, and finds existing entries ignoring case.
#include "platform/posix/native_path.h"

#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstring>

#include "base/ascii.h"

namespace vel::platform {

namespace {

bool hasDrive(const char* name) noexcept {
  return isAsciiLetter(name[0]) && name[1] == ':';
}

bool isSlashStyle(const char* name) noexcept {
  return !hasDrive(name) && std::strchr(name, '\\') == nullptr && std::strchr(name, '/') != nullptr;
}

bool isEntry(const char* path) noexcept {
  struct stat status;
  return lstat(path, &status) == 0;
}

/// Opens the directory of the path's last component, which begins at `component`. The path is cut there for
/// the call and restored, which saves a copy.
DIR* openDirectoryOf(const char* path, char* component) noexcept {
  if (component == path) return opendir(".");
  const char first = *component;
  *component = '\0';
  DIR* directory = opendir(path);
  *component = first;
  return directory;
}

/// Replaces the last component by the spelling of a matching entry; false if none matches. The first in byte
/// order wins, because the order of readdir is arbitrary.
bool matchLastComponent(const char* path, char* component) noexcept {
  DIR* const directory = openDirectoryOf(path, component);
  if (directory == nullptr) return false;
  bool found = false;
  while (const dirent* entry = readdir(directory)) {
    if (!equalsIgnoringAsciiCase(entry->d_name, component)) continue;
    if (!found || std::strcmp(entry->d_name, component) < 0)
      std::memcpy(component, entry->d_name, std::strlen(component));
    found = true;
  }
  closedir(directory);
  return found;
}

char* skipSeparators(char* text) noexcept {
  return text + std::strspn(text, "/");
}

/// Matches all components but the last.
void matchParents(char* path) noexcept {
  char* const separator = std::strrchr(path, '/');
  if (separator == nullptr || separator == path) return;
  *separator = '\0';
  matchSpelling(path);
  *separator = '/';
}

}  // namespace

bool hasDirectory(const char* name) noexcept {
  return hasDrive(name) || std::strpbrk(name, "/\\") != nullptr;
}

void matchSpelling(char* path) noexcept {
  // Nearly every name exists as it is written: then no directory is read.
  if (isEntry(path)) return;
  for (char* component = skipSeparators(path); *component != '\0';) {
    char* const end = component + std::strcspn(component, "/");
    const char separator = *end;
    *end = '\0';
    const bool found = isEntry(path) || matchLastComponent(path, component);
    *end = separator;
    if (!found) return;
    component = skipSeparators(end);
  }
}

NativePath::NativePath(const char* name, Match match) noexcept : path_(name), text_{} {
  if (isSlashStyle(name)) return;
  const char* const path = hasDrive(name) ? name + 2 : name;
  const std::size_t length = std::strlen(path);
  path_ = nullptr;
  if (std::strlen(name) > kMaxPathLength) return;
  std::replace_copy(path, path + length, text_.begin(), '\\', '/');
  path_ = text_.data();
  // A bare drive ("C:") means its current directory, which is the process's.
  if (length == 0 && path != name) path_ = ".";
  if (match == Match::All) matchSpelling(text_.data());
  if (match == Match::AllButLast) matchParents(text_.data());
}

}  // namespace vel::platform
