// Implements the base of files and directories: times of an entry by its name, and the expansion of relative
// directory paths.
//
// An expansion appends one component after the other to an output that begins with the root or the current
// directory; ".." removes the last component again:
//
//   C:\a\b  +  ..\c\.\d\    the current directory and the path
//   C:\a                   after ".."
//   C:\a\c                 after "c", and after "."
//   C:\a\c\d\              after "d" and the final separator
//
// Only the text is examined, not the file system, so a component may be missing or a link.
#include <cstring>

#include "filesys/path_text.h"
#include "platform/files.h"
#include "vel_include/vel_filesys.h"

using vel::textOrEmpty;
using vel::filesys::kMaxLength;
using vel::filesys::PathText;

namespace {

// Room for the current directory and a whole path after it: the sum may exceed the limit until ".." shortens
// it again.
using Expansion = PathText<2 * kMaxLength + 2>;

// The state in which an expansion begins: the first `root` characters of `output` can never be removed by
// "..", the first `kept` characters of the caller's path remain before the output, and `scan` is the first
// component to resolve.
struct ExpansionStart {
  Expansion output;
  std::size_t root = 0;
  std::size_t kept = 0;
  const char* scan = nullptr;
};

std::size_t rootLengthOf(const VelClPathProperty& directory) {
  if (directory.isUNC()) return static_cast<std::size_t>(directory.getPtrToPath() - directory.getAsCString());
  return directory.hasDrive() ? 2 : 0;
}

// The final separator is removed, since each component brings one before it.
bool startInCurrentDirectory(ExpansionStart& start) {
  char current[kMaxLength + 1];
  if (vel::platform::currentDirectory(current, sizeof current) != 0) return false;
  start.output.append(current);
  if (start.output.last() == '\\') start.output.cutTo(start.output.length() - 1);
  start.root = rootLengthOf(VelClPathProperty(start.output.text()));
  return true;
}

bool determineStart(const VelClPathProperty& path, ExpansionStart& start) {
  const char* proper = path.getPtrToPath();
  start.scan = proper;
  if (path.isRelative()) return startInCurrentDirectory(start);
  // The style is checked because "/:" looks like a drive as well, but need not have a third character.
  if (path.hasDrive() && path.isStyleMSDOS() && !path.isUNC()) {
    start.kept = 2;
    start.scan = proper + 3;
    return true;
  }
  start.root = rootLengthOf(path);
  start.output.append(path.getAsCString(), start.root);
  if (*proper != '\0') start.scan = proper + 1;
  return true;
}

// Removes the last component. Returns false where that would lead above the root.
bool dropLastComponent(Expansion& output, std::size_t root) {
  if (output.length() <= root) return false;
  std::size_t length = output.length() - 1;
  while (length > root && output.text()[length] != '\\') --length;
  output.cutTo(length);
  return true;
}

// Intentional: a component that merely ends in dots counts as "." or "..": callers get a path
// without "a.", and one level up for "a..".
bool resolveComponent(Expansion& output, std::size_t root, const char* component, std::size_t length) {
  const bool endsInDot = length >= 1 && component[length - 1] == '.';
  if (endsInDot && length >= 2 && component[length - 2] == '.') return dropLastComponent(output, root);
  if (endsInDot) return true;
  output.append('\\');
  output.append(component, length);
  return true;
}

// Resolves all components that end with a separator; text after the last separator is dropped. Returns false
// above the root and for a result that is too long.
bool expand(ExpansionStart& start) {
  const char* component = start.scan;
  while (const char* end = std::strchr(component, '\\')) {
    if (!resolveComponent(start.output, start.root, component, static_cast<std::size_t>(end - component)))
      return false;
    component = end + 1;
  }
  start.output.append('\\');
  return start.kept + start.output.length() <= kMaxLength;
}

// Returns the chosen time, or 0 if the entry cannot be examined.
std::int64_t timeOf(const char* name, std::int64_t vel::platform::EntryStatus::*time) {
  vel::platform::EntryStatus status{};
  return vel::platform::statusOf(textOrEmpty(name), status) == 0 ? status.*time : 0;
}

}  // namespace

VelClFileABase::VelClFileABase() = default;

VelClFileABase::~VelClFileABase() = default;

bool VelClFileABase::isRelativePath(const char* path) {
  const VelClPathProperty property(path);
  // Intentional: absolute paths that contain ".\\" count as relative, because callers ask in order to know
  // whether a path needs expansion.
  return property.isRelative() || std::strstr(property.getAsCString(), ".\\") != nullptr;
}

bool VelClFileABase::expandRelativePath(char* path) {
  if (path == nullptr) return false;
  ExpansionStart start;
  if (std::strlen(path) > kMaxLength || !determineStart(VelClPathProperty(path), start) || !expand(start)) {
    *path = '\0';
    return false;
  }
  std::memcpy(path + start.kept, start.output.text(), start.output.length() + 1);
  return true;
}

int64_t VelClFileABase::getDateTimeOfCreation(const char* name) const {
  return timeOf(name, &vel::platform::EntryStatus::changed);
}

int64_t VelClFileABase::getDateTimeOfLastAccess(const char* name) const {
  return timeOf(name, &vel::platform::EntryStatus::accessed);
}

int64_t VelClFileABase::getDateTimeOfLastModification(const char* name) const {
  return timeOf(name, &vel::platform::EntryStatus::modified);
}
