// Implements queries and operations on a file by its name. Operations report failures through the last error;
// copying and renaming themselves are the platform's work.
#include <cerrno>
#include <cstring>

#include "filesys/path_text.h"
#include "platform/file_copy.h"
#include "platform/files.h"
#include "platform/system_error.h"
#include "vel_include/vel_environment.h"
#include "vel_include/vel_filesys.h"

namespace platform = vel::platform;

namespace {

// A rename that fails although the target does not exist counts as refused.
VelEnErrorClass classOfFailedRename(const VelClFilenameABase& newName) {
  return newName.isExistent() ? VelEnErrorClass::IO_ALREADY_IN_USE : VelEnErrorClass::IO_PERMISSION_DENIED;
}

}  // namespace

VelClFile::VelClFile(const VelClFilenameABase& name, const char* defaultType) : filename_(name) {
  if (defaultType != nullptr && !filename_.hasExtension()) setFileType(defaultType);
}

VelClFile::~VelClFile() = default;

VelClFile::operator const char*() const {
  return getAsCString();
}

const char* VelClFile::getAsCString() const {
  return filename_.getAsCString();
}

bool VelClFile::isExistent() const {
  return filename_.isExistent();
}

bool VelClFile::isDirectory() const {
  return false;
}

bool VelClFile::isFile() const {
  return true;
}

int64_t VelClFile::getDateTimeOfCreation() const {
  return VelClFileABase::getDateTimeOfCreation(getAsCString());
}

int64_t VelClFile::getDateTimeOfLastAccess() const {
  return VelClFileABase::getDateTimeOfLastAccess(getAsCString());
}

int64_t VelClFile::getDateTimeOfLastModification() const {
  return VelClFileABase::getDateTimeOfLastModification(getAsCString());
}

const char* VelClFile::getFileType() const {
  return filename_.hasExtension() ? filename_.getExtension() + 1 : "";
}

void VelClFile::setFileType(const char* type) {
  filename_.setNewExtension(type);
}

bool VelClFile::isHidden() const {
  return (platform::attributesOf(getAsCString()) & platform::kAttributeHidden) != 0;
}

bool VelClFile::isReadOnly() const {
  return !platform::isWritable(getAsCString());
}

void VelClFile::setReadOnly(bool readOnly) {
  static_cast<void>(platform::setReadOnly(getAsCString(), readOnly));
}

unsigned long VelClFile::getFileSize() const {
  platform::EntryStatus status{};
  if (platform::statusOf(getAsCString(), status) != 0) return 0;
  // Intentional: sizes wrap at 4 GB on every system, since unsigned long has 32 bits on Windows.
  return static_cast<std::uint32_t>(status.sizeInBytes);
}

bool VelClFile::fail(unsigned long id, VelEnErrorClass errorClass) {
  lastError_ = {id, errorClass};
  return false;
}

bool VelClFile::succeed() {
  lastError_.reset();
  return true;
}

// Equal names get an error of their own: a file copied to itself could be truncated before it is read.
bool VelClFile::copyTo(const VelClFilenameABase& target, bool keepAttributes) {
  if (filename_ == target) return fail(FILE_COULD_NOT_COPY_SELF, VelEnErrorClass::INCONSISTENT_SITUATION);
  if (platform::copyFile(getAsCString(), target.getAsCString(), !keepAttributes) != 0)
    return fail(FILE_COULD_NOT_COPY, VelEnErrorClass::IO_PROBLEM);
  return succeed();
}

bool VelClFile::copyTo(const VelClLocation& directory, bool keepAttributes) {
  return copyTo(VelClFilename(directory, filename_.getName(), nullptr), keepAttributes);
}

bool VelClFile::remove() {
  const platform::SystemError error = platform::removeFile(getAsCString());
  if (error == 0) return succeed();
  return fail(FILE_COULD_NOT_REMOVE,
              error == ENOENT ? VelEnErrorClass::IO_NOT_EXISTENT : VelEnErrorClass::IO_PERMISSION_DENIED);
}

bool VelClFile::renameAs(const VelClFilenameABase& newName) {
  if (platform::renameFile(getAsCString(), newName.getAsCString()) != 0)
    return fail(FILE_COULD_NOT_RENAME, classOfFailedRename(newName));
  filename_ = newName;
  return succeed();
}

// Tries the directories of a list such as "C:\\bin;D:\\tools" in turn. Empty entries are skipped; they do not
// mean the current directory.
bool VelClFile::determineFileInEnvVarPath(VelClFilename& file, const char* variableName) const {
  if (file.isExistent()) return true;
  const char* entry = VelClEnvironmentVariableQueryOnly(variableName).getValue();
  if (entry == nullptr) return false;
  // Join with the original name each time: a directory without a separator may re-split `file`.
  const VelClFilename wanted = file.getName();
  while (*(entry += std::strspn(entry, ";")) != '\0') {
    const std::size_t length = std::strcspn(entry, ";");
    // A joined name that is too long is skipped: cut to the limit, it could name another file.
    if (length + 1 + wanted.getLength() <= vel::filesys::kMaxLength) {
      vel::filesys::PathText<> directory;
      directory.append(entry, length);
      file.setNew(directory.text(), wanted.getAsCString());
      if (file.isExistent()) return true;
    }
    entry += length;
  }
  return false;
}
