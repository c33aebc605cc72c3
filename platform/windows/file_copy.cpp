// Copies a file's contents and attributes. CopyFile writes the copy beside the target, and a rename puts it
// in place, so a failure halfway leaves the old target intact. If the directory accepts no new file, the
// target is overwritten in place.
#include <cerrno>

#include "platform/file_copy.h"
#include "platform/replacing.h"
#include "platform/windows/beside.h"
#include "platform/windows/system_errors.h"

namespace vel::platform {

namespace {

/// CopyFile copies the read-only attribute, too.
void makeWritable(const wchar_t* name) noexcept {
  const DWORD attributes = GetFileAttributesW(name);
  if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) != 0)
    SetFileAttributesW(name, attributes & ~DWORD{FILE_ATTRIBUTE_READONLY});
}

/// Read-only files cannot be deleted.
void removeCopy(const wchar_t* name) noexcept {
  makeWritable(name);
  DeleteFileW(name);
}

DWORD makeCopy(const wchar_t* from, Replacement& target) noexcept {
  DWORD error = ERROR_FILE_EXISTS;
  while (error == ERROR_FILE_EXISTS) {
    if (makeTemporaryName(target) != 0) return ERROR_FILENAME_EXCED_RANGE;
    error = CopyFileW(from, OwnName(target.temporary).get(), TRUE) != FALSE ? ERROR_SUCCESS : GetLastError();
  }
  return error;
}

/// Copies the rights of the file that is replaced. A link's own rights do not count.
void copyOldRights(const Replacement& target, DWORD attributes) noexcept {
  if ((attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0) return;
  const FileHandle old(openForQuery(OwnName(target.target).get(), READ_CONTROL));
  const FileHandle copy(openForQuery(OwnName(target.temporary).get(), WRITE_DAC));
  if (old.isOpen() && copy.isOpen()) copyRights(old.get(), copy.get());
}

DWORD copyBeside(const wchar_t* from, Replacement& target, DWORD attributes, bool writable) noexcept {
  if (const DWORD error = makeCopy(from, target); error != ERROR_SUCCESS) return error;
  const OwnName temporary(target.temporary);
  if (writable) makeWritable(temporary.get());
  if (attributes != INVALID_FILE_ATTRIBUTES) copyOldRights(target, attributes);
  if (MoveFileExW(temporary.get(), OwnName(target.target).get(), MOVEFILE_REPLACE_EXISTING) != FALSE)
    return ERROR_SUCCESS;
  const DWORD error = GetLastError();
  removeCopy(temporary.get());
  return error;
}

/// Whether to overwrite in place: the directory accepts no new file, or the temporary name is too long, or
/// somebody has the target open, so that it cannot be replaced.
bool isFixed(DWORD error) noexcept {
  return error == ERROR_ACCESS_DENIED || error == ERROR_SHARING_VIOLATION || error == ERROR_PATH_NOT_FOUND ||
         error == ERROR_FILENAME_EXCED_RANGE;
}

DWORD copyInPlace(const wchar_t* from, const wchar_t* to, bool writable) noexcept {
  if (CopyFileW(from, to, FALSE) == FALSE) return GetLastError();
  if (writable) makeWritable(to);
  return ERROR_SUCCESS;
}

bool areSameFile(const wchar_t* first, const wchar_t* second) noexcept {
  const FileHandle one(openForQuery(first, 0)), other(openForQuery(second, 0));
  return one.isOpen() && other.isOpen() && identityOf(one.get()) != FileIdentity{} &&
         identityOf(one.get()) == identityOf(other.get());
}

}  // namespace

SystemError copyFile(const char* from, const char* to, bool writable) noexcept {
  Replacement target;
  if (const SystemError error = setTarget(to, target); error != 0) return error;
  const WideName source(from);
  if (!source.isValid()) return errnoOf(source.error());
  const OwnName targetName(target.target);
  const DWORD attributes = GetFileAttributesW(targetName.get());
  // Windows itself refuses a read-only target, but Wine as root overwrites it.
  constexpr DWORD kUnwritable = FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_DIRECTORY;
  const bool isThere = attributes != INVALID_FILE_ATTRIBUTES;
  if (isThere && (attributes & kUnwritable) != 0) return EACCES;
  // Copying a file onto itself under another name would destroy it.
  if (isThere && areSameFile(source.get(), targetName.get())) return EACCES;
  DWORD error = ERROR_ACCESS_DENIED;
  if (!isDevice(targetName.get())) error = copyBeside(source.get(), target, attributes, writable);
  const bool isLink = isThere && (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
  if (isFixed(error) && !isLink) error = copyInPlace(source.get(), targetName.get(), writable);
  return error == ERROR_SUCCESS ? 0 : errnoOf(error);
}

}  // namespace vel::platform
