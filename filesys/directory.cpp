// Implements operations on a directory by its absolute name: creating, entering, changing the name level by
// level, and removing. Removing the contents is tree_removal.cpp's work; the expansion of relative names is
// in file_base.cpp.
#include <algorithm>
#include <cerrno>
#include <cstring>

#include "filesys/path_text.h"
#include "filesys/tree_removal.h"
#include "platform/directories.h"
#include "platform/files.h"
#include "platform/system_error.h"
#include "vel_include/vel_filesys.h"

namespace platform = vel::platform;
using vel::textOrEmpty;
using vel::filesys::kMaxLength;
using vel::filesys::PathText;

namespace {

// Twice the limit: the name may follow a directory of the full length, and a name that is cut here would no
// longer be recognised as too long.
using WantedName = PathText<2 * kMaxLength + 2>;

// Returns the drive that has to precede the name. On systems where "/dir" is absolute, it would become a
// relative name once its slashes are replaced.
const char* driveFor(const char* name) {
  const VelClPathProperty property(name);
  return property.isStyleUNIX() && property.isAbsolute() ? platform::driveOfSlashNames() : "";
}

// Appends the separator of the name's style, as VelClLocation does.
// Intentional: the separator is chosen before slashes are replaced; "C:/a/" is in the backslash style because
// of its drive, so callers get a name that ends with two backslashes.
void appendSeparator(WantedName& name) {
  const char separator = VelClPathProperty(name.text()).getPathSep();
  if (name.length() != 0 && name.last() != separator) name.append(separator);
}

// Copies the name and replaces the slashes after its server and share. Returns false, without writing, for a
// name that is too long.
bool normalize(const WantedName& wanted, char* name) {
  if (wanted.length() > kMaxLength) return false;
  vel::filesys::copyBounded(name, wanted.text(), wanted.length());
  VelClPathProperty::normalizePath(name + (VelClPathProperty(name).getPtrToPath() - name));
  return true;
}

// Intentional: callers get IO_STILL_IN_USE for every refusal (EACCES), whatever the reason.
VelEnErrorClass classOfFailedRemoval(platform::SystemError error) {
  return error == EACCES ? VelEnErrorClass::IO_STILL_IN_USE : VelEnErrorClass::IO_INVALID_NAME;
}

bool ensureDirectory(const char* path) {
  if (platform::entryExists(path)) return true;
  const platform::SystemError error = platform::makeDirectory(path);
  // Another thread or process may have created the directory since the check.
  return error == 0 || error == EEXIST;
}

// Removes the final separator, with which some systems refuse to report the times of a directory. A root
// keeps it: "C:" is the drive's current directory and "" no directory.
const char* withoutSeparator(const VelClLocation& name, PathText<>& text) {
  text.append(name.getAsCString());
  if (text.length() != 0 && !name.isRoot()) text.cutTo(text.length() - 1);
  return text.text();
}

}  // namespace

VelClDirectory::VelClDirectory() : VelClDirectory("") {}

VelClDirectory::VelClDirectory(const char* name) : name_("", false) {
  WantedName wanted;
  wanted.append(textOrEmpty(name));
  appendSeparator(wanted);
  setNewName(driveFor(wanted.text()), wanted.text());
}

VelClDirectory::VelClDirectory(const VelClLocation& name) : VelClDirectory(name.getAsCString()) {}

VelClDirectory::~VelClDirectory() = default;

// Joins both texts and makes the result absolute. A failure leaves the empty name, so that a later removal or
// creation cannot affect a directory that the caller did not name.
void VelClDirectory::setNewName(const char* begin, const char* rest) {
  WantedName wanted;
  wanted.append(begin);
  wanted.append(rest);
  char name[kMaxLength + 1];
  const bool fits = normalize(wanted, name);
  if (fits && (!isRelativePath(name) || expandRelativePath(name))) {
    name_ = name;
    succeed();
    return;
  }
  name_ = "";
  fail(DIRECTORY_EXPANSION_FAILED, VelEnErrorClass::IO_INVALID_NAME);
}

bool VelClDirectory::fail(unsigned long id, VelEnErrorClass errorClass) {
  lastError_ = {id, errorClass};
  return false;
}

bool VelClDirectory::succeed() {
  lastError_.reset();
  return true;
}

VelClDirectory::operator const char*() const {
  return getAsCString();
}

const char* VelClDirectory::getAsCString() const {
  return name_.getAsCString();
}

bool VelClDirectory::isExistent() const {
  return name_.isExistent();
}

bool VelClDirectory::isDirectory() const {
  return true;
}

bool VelClDirectory::isFile() const {
  return false;
}

int64_t VelClDirectory::getDateTimeOfCreation() const {
  PathText<> text;
  return VelClFileABase::getDateTimeOfCreation(withoutSeparator(name_, text));
}

int64_t VelClDirectory::getDateTimeOfLastAccess() const {
  PathText<> text;
  return VelClFileABase::getDateTimeOfLastAccess(withoutSeparator(name_, text));
}

int64_t VelClDirectory::getDateTimeOfLastModification() const {
  PathText<> text;
  return VelClFileABase::getDateTimeOfLastModification(withoutSeparator(name_, text));
}

unsigned int VelClDirectory::getNumOfSubDirs() const {
  const char* const name = getAsCString();
  const auto separators = std::count(name, name + name_.getLength(), '\\');
  return separators > 0 ? static_cast<unsigned int>(separators - 1) : 0;
}

// Creates the directories from the root down: each separator is replaced by a NUL for a moment, so that the
// buffer holds the name of one level after the other. If a level fails, the directories created before are
// kept.
bool VelClDirectory::create() {
  if (name_.getLength() == 0) return fail(DIRECTORY_COULD_NOT_CREATE, VelEnErrorClass::IO_NOT_EXISTENT);
  char path[kMaxLength + 1];
  vel::filesys::copyBounded(path, getAsCString(), kMaxLength);
  const std::size_t root =
      static_cast<std::size_t>(name_.getPtrToPath() - getAsCString()) + (name_.hasDrive() ? 3 : 1);
  // The root itself cannot be created, so the loop begins after it. The name of a server without a share does
  // not contain a path; the minimum keeps the loop within the name.
  for (char* end = path + std::min<std::size_t>(root, name_.getLength());
       (end = std::strchr(end, '\\')) != nullptr; *end++ = '\\') {
    *end = '\0';
    if (!ensureDirectory(path)) return fail(DIRECTORY_COULD_NOT_CREATE, VelEnErrorClass::IO_NOT_EXISTENT);
  }
  return succeed();
}

bool VelClDirectory::setAsCurrent() {
  if (platform::changeDirectory(getAsCString()) == 0) return succeed();
  return fail(DIRECTORY_COULD_NOT_CHANGE, VelEnErrorClass::IO_NOT_EXISTENT);
}

// "..\\" components of `sub` are resolved with the rest, so they lead up from this directory.
void VelClDirectory::attachSubDir(const VelClLocation& sub) {
  setNewName(getAsCString(), sub.getPtrToPath());
}

bool VelClDirectory::detachLastSubDir() {
  const char* const name = getAsCString();
  std::size_t length = name_.getLength();
  if (length == 0 || name_.isRoot()) return fail(DIRECTORY_COULD_NOT_DETACH, VelEnErrorClass::LOGIC);
  // The name ends with a separator, which belongs to the level that is detached.
  do --length;
  while (length > 0 && name[length - 1] != '\\');
  name_ = VelClLocation(name, length, false);
  return succeed();
}

bool VelClDirectory::detachSubDirs(unsigned int count) {
  for (; count > 0; --count)
    if (!detachLastSubDir()) return false;
  return succeed();
}

bool VelClDirectory::remove() {
  return removeAll(false);
}

bool VelClDirectory::removeAll(bool withContents) {
  // Whether contents are left shows when the directory itself is removed: systems refuse one that is not
  // empty.
  if (withContents) vel::filesys::removeContents(getAsCString());
  const platform::SystemError error = platform::removeDirectory(getAsCString());
  return error == 0 ? succeed() : fail(DIRECTORY_COULD_NOT_REMOVE, classOfFailedRemoval(error));
}

bool VelClDirectory::isRelativeDirectory(const char* path) {
  return isRelativePath(path);
}

bool VelClDirectory::expandRelativeDirectory(char* path) {
  return expandRelativePath(path);
}
