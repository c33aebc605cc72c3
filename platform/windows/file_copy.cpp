// Copies a file's contents and attributes. CopyFile writes the copy beside the target, and a rename puts it
// in place, so a failure halfway leaves the old target intact. If the directory accepts no new file, the
// target is overwritten in place.
#include <cerrno>

#include "platform/file_copy.h"
#include "platform/files.h"
#include "platform/replacing.h"
#include "platform/windows/beside.h"
#include "platform/windows/system_errors.h"

namespace vel::platform {

namespace {

/// CopyFile copies the read-only attribute, too.
void makeWritable(const char* name) noexcept {
  const DWORD attributes = GetFileAttributesA(name);
  if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) != 0)
    SetFileAttributesA(name, attributes & ~DWORD{FILE_ATTRIBUTE_READONLY});
}

/// Read-only files cannot be deleted.
void removeCopy(const char* name) noexcept {
  makeWritable(name);
  DeleteFileA(name);
}

DWORD makeCopy(const char* from, Replacement& target) noexcept {
  DWORD error = ERROR_FILE_EXISTS;
  while (error == ERROR_FILE_EXISTS) {
    if (makeTemporaryName(target) != 0) return ERROR_FILENAME_EXCED_RANGE;
    error = CopyFileA(from, target.temporary, TRUE) != FALSE ? ERROR_SUCCESS : GetLastError();
  }
  return error;
}

/// Copies the rights of the file that is replaced. A link's own rights do not count.
void copyOldRights(const Replacement& target, DWORD attributes) noexcept {
  if ((attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0) return;
  const FileHandle old(openForQuery(target.target, READ_CONTROL));
  const FileHandle copy(openForQuery(target.temporary, WRITE_DAC));
  if (old.isOpen() && copy.isOpen()) copyRights(old.get(), copy.get());
}

DWORD copyBeside(const char* from, Replacement& target, DWORD attributes, bool writable) noexcept {
  if (const DWORD error = makeCopy(from, target); error != ERROR_SUCCESS) return error;
  if (writable) makeWritable(target.temporary);
  if (attributes != INVALID_FILE_ATTRIBUTES) copyOldRights(target, attributes);
  if (MoveFileExA(target.temporary, target.target, MOVEFILE_REPLACE_EXISTING) != FALSE) return ERROR_SUCCESS;
  const DWORD error = GetLastError();
  removeCopy(target.temporary);
  return error;
}

/// Whether to overwrite in place: the directory accepts no new file, or the temporary name is too long, or
/// somebody has the target open, so that it cannot be replaced.
bool isFixed(DWORD error) noexcept {
  return error == ERROR_ACCESS_DENIED || error == ERROR_SHARING_VIOLATION || error == ERROR_PATH_NOT_FOUND ||
         error == ERROR_FILENAME_EXCED_RANGE;
}

DWORD copyInPlace(const char* from, const char* to, bool writable) noexcept {
  if (CopyFileA(from, to, FALSE) == FALSE) return GetLastError();
  if (writable) makeWritable(to);
  return ERROR_SUCCESS;
}

}  // namespace

SystemError copyFile(const char* from, const char* to, bool writable) noexcept {
  Replacement target;
  const DWORD length = GetFullPathNameA(to, sizeof target.target, target.target, nullptr);
  if (length == 0) return errnoOf(GetLastError());
  if (length >= sizeof target.target) return ENAMETOOLONG;
  const DWORD attributes = GetFileAttributesA(target.target);
  // Windows itself refuses a read-only target, but Wine as root overwrites it.
  constexpr DWORD kUnwritable = FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_DIRECTORY;
  const bool isThere = attributes != INVALID_FILE_ATTRIBUTES;
  if (isThere && (attributes & kUnwritable) != 0) return EACCES;
  // Copying a file onto itself under another name would destroy it.
  const FileIdentity source = isThere ? identityOfFile(from) : FileIdentity{};
  if (source != FileIdentity{} && source == identityOfFile(target.target)) return EACCES;
  DWORD error = ERROR_ACCESS_DENIED;
  if (!isDevice(target.target)) error = copyBeside(from, target, attributes, writable);
  const bool isLink = isThere && (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
  if (isFixed(error) && !isLink) error = copyInPlace(from, target.target, writable);
  return error == ERROR_SUCCESS ? 0 : errnoOf(error);
}

}  // namespace vel::platform
