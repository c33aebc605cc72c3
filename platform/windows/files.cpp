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
#include "platform/windows/native_text.h"
#include "platform/windows/system_errors.h"

namespace vel::platform {

namespace {

/// The mode of _waccess that asks for write permission.
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

bool mayAccess(const char* name, int mode) noexcept {
  const WideName wide(name);
  return wide.isValid() && _waccess(wide.get(), mode) == 0;
}

}  // namespace

FileIdentity identityOfFile(const char* name) noexcept {
  const WideName wide(name);
  if (!wide.isValid()) return {};
  const FileHandle file(openForQuery(wide.get(), 0));
  return file.isOpen() ? identityOf(file.get()) : FileIdentity{};
}

bool entryExists(const char* name) noexcept {
  return mayAccess(name, 0);
}

bool isWritable(const char* name) noexcept {
  return mayAccess(name, kTestForWriting);
}

std::uint32_t attributesOf(const char* name) noexcept {
  const WideName wide(name);
  const DWORD attributes = wide.isValid() ? GetFileAttributesW(wide.get()) : INVALID_FILE_ATTRIBUTES;
  return attributes == INVALID_FILE_ATTRIBUTES ? kAttributesUnreadable : attributes & kKnownAttributes;
}

SystemError statusOf(const char* name, EntryStatus& out) noexcept {
  const WideName wide(name);
  if (!wide.isValid()) return errnoOf(wide.error());
  WIN32_FILE_ATTRIBUTE_DATA data;
  if (GetFileAttributesExW(wide.get(), GetFileExInfoStandard, &data) == FALSE) return errnoOf(GetLastError());
  out.sizeInBytes = joined(data.nFileSizeHigh, data.nFileSizeLow);
  out.changed = secondsOr(data.ftCreationTime, data.ftLastWriteTime);
  out.accessed = secondsOr(data.ftLastAccessTime, data.ftLastWriteTime);
  out.modified = secondsSince1970(data.ftLastWriteTime);
  return 0;
}

SystemError setReadOnly(const char* name, bool readOnly) noexcept {
  return withWideName(name, [readOnly](const wchar_t* path) {
    return _wchmod(path, readOnly ? _S_IREAD : _S_IREAD | _S_IWRITE) == 0 ? 0 : errno;
  });
}

SystemError removeFile(const char* name) noexcept {
  const std::uint32_t attributes = attributesOf(name);
  const bool isReadOnly = attributes != kAttributesUnreadable && (attributes & kAttributeReadOnly) != 0;
  // Windows refuses to delete read-only files.
  if (isReadOnly) static_cast<void>(setReadOnly(name, false));
  const SystemError error =
      withWideName(name, [](const wchar_t* path) { return _wunlink(path) == 0 ? 0 : errno; });
  if (error != 0 && isReadOnly) static_cast<void>(setReadOnly(name, true));
  return error;
}

SystemError renameFile(const char* from, const char* to) noexcept {
  // The runtime reports success for a rename to the very same name, but the target exists.
  if (std::strcmp(from, to) == 0 && entryExists(to)) return EEXIST;
  const WideName target(to);
  if (!target.isValid()) return errnoOf(target.error());
  return withWideName(
      from, [&target](const wchar_t* source) { return _wrename(source, target.get()) == 0 ? 0 : errno; });
}

SystemError currentDirectory(char* out, std::size_t capacity) noexcept {
  WideBuffer path;
  const DWORD length = path.fill([](wchar_t* text, DWORD room) { return GetCurrentDirectoryW(room, text); });
  if (length == 0) return errnoOf(GetLastError());
  return errnoOf(narrowText({path.get(), length}, fileNameCodePage(), out, capacity));
}

const char* fallbackTmpDirectory() noexcept {
  return "C:\\";
}

const char* driveOfSlashNames() noexcept {
  return "";
}

SystemError createExclusively(const char* name, int& descriptor) noexcept {
  return withWideName(name, [&descriptor](const wchar_t* path) {
    descriptor = _wopen(path, _O_RDWR | _O_CREAT | _O_EXCL | _O_BINARY | _O_NOINHERIT, _S_IREAD | _S_IWRITE);
    return descriptor < 0 ? errno : 0;
  });
}

}  // namespace vel::platform
