// Status, attributes and permissions of files by name; removing, renaming and exclusive creation. Copying is
// in file_copy.cpp.
#include <direct.h>
#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include "platform/files.h"
#include "platform/system_error.h"
#include "platform/windows/beside.h"
#include "platform/windows/file_words.h"
#include "platform/windows/system_errors.h"

namespace vel::platform {

namespace {

constexpr std::uint32_t kKnownAttributes = kAttributeReadOnly | kAttributeHidden | kAttributeDirectory;
/// The mode of _access that asks for write permission.
constexpr int kTestForWriting = 2;

/// FILETIME counts ticks of 100 ns since 1601.
std::int64_t secondsSince1970(FILETIME time) noexcept {
  constexpr std::int64_t kTicksPerSecond = 10'000'000;
  constexpr std::int64_t kSecondsFrom1601 = 11'644'473'600;
  return static_cast<std::int64_t>(joined(time.dwHighDateTime, time.dwLowDateTime)) / kTicksPerSecond -
         kSecondsFrom1601;
}

/// Converts a time, replacing 0 by the time of the last modification, the only one that some file systems
/// keep.
std::int64_t secondsOr(FILETIME time, FILETIME modified) noexcept {
  const bool isKept = time.dwHighDateTime != 0 || time.dwLowDateTime != 0;
  return secondsSince1970(isKept ? time : modified);
}

}  // namespace

FileIdentity identityOfFile(const char* name) noexcept {
  const FileHandle file(openForQuery(name, 0));
  return file.isOpen() ? identityOf(file.get()) : FileIdentity{};
}

bool entryExists(const char* name) noexcept {
  return _access(name, 0) == 0;
}

bool isWritable(const char* name) noexcept {
  return _access(name, kTestForWriting) == 0;
}

std::uint32_t attributesOf(const char* name) noexcept {
  const DWORD attributes = GetFileAttributesA(name);
  return attributes == INVALID_FILE_ATTRIBUTES ? kAttributesUnreadable : attributes & kKnownAttributes;
}

SystemError statusOf(const char* name, EntryStatus& out) noexcept {
  WIN32_FILE_ATTRIBUTE_DATA data;
  if (GetFileAttributesExA(name, GetFileExInfoStandard, &data) == FALSE) return errnoOf(GetLastError());
  out.sizeInBytes = joined(data.nFileSizeHigh, data.nFileSizeLow);
  out.changed = secondsOr(data.ftCreationTime, data.ftLastWriteTime);
  out.accessed = secondsOr(data.ftLastAccessTime, data.ftLastWriteTime);
  out.modified = secondsSince1970(data.ftLastWriteTime);
  return 0;
}

SystemError setReadOnly(const char* name, bool readOnly) noexcept {
  return _chmod(name, readOnly ? _S_IREAD : _S_IREAD | _S_IWRITE) == 0 ? 0 : errno;
}

SystemError removeFile(const char* name) noexcept {
  const std::uint32_t attributes = attributesOf(name);
  const bool isReadOnly = attributes != kAttributesUnreadable && (attributes & kAttributeReadOnly) != 0;
  // Windows refuses to delete read-only files.
  if (isReadOnly) static_cast<void>(setReadOnly(name, false));
  if (_unlink(name) == 0) return 0;
  const SystemError error = errno;
  if (isReadOnly) static_cast<void>(setReadOnly(name, true));
  return error;
}

SystemError renameFile(const char* from, const char* to) noexcept {
  // The runtime reports success for a rename to the very same name, but the target exists.
  if (std::strcmp(from, to) == 0 && entryExists(to)) return EEXIST;
  return std::rename(from, to) == 0 ? 0 : errno;
}

SystemError currentDirectory(char* out, std::size_t capacity) noexcept {
  const DWORD length = GetCurrentDirectoryA(static_cast<DWORD>(capacity), out);
  if (length == 0) return errnoOf(GetLastError());
  return length < capacity ? 0 : ERANGE;
}

const char* fallbackTmpDirectory() noexcept {
  return "C:\\";
}

const char* driveOfSlashNames() noexcept {
  return "";
}

SystemError createExclusively(const char* name, int& descriptor) noexcept {
  descriptor = _open(name, _O_RDWR | _O_CREAT | _O_EXCL | _O_BINARY | _O_NOINHERIT, _S_IREAD | _S_IWRITE);
  return descriptor < 0 ? errno : 0;
}

}  // namespace vel::platform
