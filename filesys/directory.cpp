// A directory by its absolute name. Emptying it is tree_removal.cpp's work.
#include <algorithm>
#include <cerrno>
#include <cstring>

#include "filesys/path_text.h"
#include "filesys/tree_removal.h"
#include "platform/platform.h"
#include "vel_include/vel_filesys.h"

namespace platform = vel::platform;
using vel::filesys::kMaxLength;
using vel::filesys::PathText;
using vel::filesys::textOrEmpty;

namespace {

// Room to see that a name is too long, after a directory of the full length.
using WantedName = PathText<2 * kMaxLength + 2>;

// Absolute names in slash style would lose their root with their style.
const char* driveFor(const char* name) {
  const VelClPathProperty property(name);
  return property.isStyleUNIX() && property.isAbsolute() ? platform::driveOfSlashNames() : "";
}

// Normalizes behind the server part and appends the separator that expanding relies on.
bool complete(const WantedName& wanted, char* name) {
  if (wanted.length() > kMaxLength) return false;
  vel::filesys::copyBounded(name, wanted.text(), wanted.length());
  VelClPathProperty::normalizePath(name + (VelClPathProperty(name).getPtrToPath() - name));
  std::size_t length = wanted.length();
  // A location chooses its separator before it is normalized, so that "C:/a/" comes with one more.
  while (length > 3 && name[length - 1] == '\\' && name[length - 2] == '\\') name[--length] = '\0';
  if (length == 0 || name[length - 1] == '\\') return true;
  if (length == kMaxLength) return false;
  name[length] = '\\';
  name[length + 1] = '\0';
  return true;
}

VelEnErrorClass classOfFailedRemoval(platform::SystemError error) {
  return error == EACCES ? VelEnErrorClass::IO_STILL_IN_USE : VelEnErrorClass::IO_INVALID_NAME;
}

bool makeUnlessExistent(const char* path) {
  if (platform::entryExists(path)) return true;
  const platform::SystemError error = platform::makeDirectory(path);
  // Somebody else may have been faster.
  return error == 0 || error == EEXIST;
}

// The times belong to the name without its separator, but for a root, which would not be one without it.
const char* withoutSeparator(const VelClLocation& name, PathText<>& text) {
  text.append(name.getAsCString());
  if (text.length() != 0 && !name.isRoot()) text.cutTo(text.length() - 1);
  return text.text();
}

}  // namespace

VelClDirectory::VelClDirectory() : name_("", false) {
  char current[kMaxLength + 1];
  WantedName wanted;
  if (!platform::currentDirectory(current, sizeof current)) {
    fail(DIRECTORY_EXPANSION_FAILED, VelEnErrorClass::IO_INVALID_NAME);
    return;
  }
  wanted.append(current);
  char name[kMaxLength + 1];
  if (complete(wanted, name))
    name_ = name;
  else
    fail(DIRECTORY_EXPANSION_FAILED, VelEnErrorClass::IO_INVALID_NAME);
}

VelClDirectory::VelClDirectory(const char* name) : name_("", false) {
  setNewName(driveFor(name), name);
}

VelClDirectory::VelClDirectory(const VelClLocation& name) : VelClDirectory(name.getAsCString()) {}

VelClDirectory::~VelClDirectory() = default;

void VelClDirectory::setNewName(const char* begin, const char* rest) {
  WantedName wanted;
  wanted.append(begin);
  wanted.append(textOrEmpty(rest));
  char name[kMaxLength + 1];
  const bool isComplete = complete(wanted, name);
  if (isComplete && (!isRelativePath(name) || expandRelativePath(name))) {
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

bool VelClDirectory::create() {
  if (name_.getLength() == 0) return fail(DIRECTORY_COULD_NOT_CREATE, VelEnErrorClass::IO_NOT_EXISTENT);
  char path[kMaxLength + 1];
  vel::filesys::copyBounded(path, getAsCString(), kMaxLength);
  const std::size_t root =
      static_cast<std::size_t>(name_.getPtrToPath() - getAsCString()) + (name_.hasDrive() ? 3 : 1);
  // A server without a share has no path proper to begin in.
  for (char* end = path + std::min<std::size_t>(root, name_.getLength());
       (end = std::strchr(end, '\\')) != nullptr; *end++ = '\\') {
    *end = '\0';
    if (!makeUnlessExistent(path)) return fail(DIRECTORY_COULD_NOT_CREATE, VelEnErrorClass::IO_NOT_EXISTENT);
  }
  return succeed();
}

bool VelClDirectory::setAsCurrent() {
  if (platform::changeDirectory(getAsCString()) == 0) return succeed();
  return fail(DIRECTORY_COULD_NOT_CHANGE, VelEnErrorClass::IO_NOT_EXISTENT);
}

void VelClDirectory::attachSubDir(const VelClLocation& sub) {
  setNewName(getAsCString(), sub.getPtrToPath());
}

bool VelClDirectory::detachLastSubDir() {
  const char* const name = getAsCString();
  std::size_t length = name_.getLength();
  if (length == 0 || name_.isRoot()) return fail(DIRECTORY_COULD_NOT_DETACH, VelEnErrorClass::LOGIC);
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
  // A root cannot be removed: its contents are kept rather than lost for nothing. So are those of "\\\\" and
  // "\\", which going up from "\\\\server\\" leaves, and which the system takes for a root, too.
  if (withContents && name_.isAbsolute() && !name_.isRoot()) vel::filesys::removeContents(getAsCString());
  const platform::SystemError error = platform::removeDirectory(getAsCString());
  return error == 0 ? succeed() : fail(DIRECTORY_COULD_NOT_REMOVE, classOfFailedRemoval(error));
}

bool VelClDirectory::isRelativeDirectory(const char* path) {
  return isRelativePath(path);
}

bool VelClDirectory::expandRelativeDirectory(char* path) {
  return expandRelativePath(path);
}
