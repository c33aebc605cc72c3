// Replacing a file by another one written beside it.
#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include "platform/platform.h"
#include "platform/windows/system_errors.h"

namespace vel::platform {

namespace {

constexpr int kMostNames = 100;

/// A name of no more than 20 characters in the target's directory.
bool drawName(Replacement& replacement, int attempt) noexcept {
  const char* const separator = std::strrchr(replacement.target, '\\');
  const int directory = separator != nullptr ? static_cast<int>(separator - replacement.target) + 1 : 0;
  const int length =
      std::snprintf(replacement.temporary, sizeof replacement.temporary, "%.*s~%08lx%02x.tmp", directory,
                    replacement.target, GetCurrentProcessId(), static_cast<unsigned int>(attempt));
  return length > 0 && static_cast<std::size_t>(length) < sizeof replacement.temporary;
}

SystemError openBeside(Replacement& replacement) noexcept {
  for (int attempt = 0; attempt < kMostNames; ++attempt) {
    if (!drawName(replacement, attempt)) return ENAMETOOLONG;
    replacement.descriptor =
        _open(replacement.temporary, _O_WRONLY | _O_CREAT | _O_EXCL | _O_BINARY | _O_NOINHERIT,
              _S_IREAD | _S_IWRITE);
    if (replacement.descriptor >= 0) return 0;
    if (errno != EEXIST) return errno;
  }
  return EEXIST;
}

/// The old file's access rights, before anything is in the new one.
void takeOverRights(const Replacement& replacement) noexcept {
  constexpr DWORD kRights = DACL_SECURITY_INFORMATION;
  alignas(void*) unsigned char rights[4096];
  DWORD size = 0;
  if (GetFileSecurityA(replacement.target, kRights, rights, sizeof rights, &size) != FALSE)
    SetFileSecurityA(replacement.temporary, kRights, rights);
}

/// Last, because writing changes them.
void takeOverAttributes(const Replacement& replacement) noexcept {
  const DWORD attributes = GetFileAttributesA(replacement.target);
  if (attributes != INVALID_FILE_ATTRIBUTES) SetFileAttributesA(replacement.temporary, attributes);
}

/// One step of the file system. ReplaceFile takes several, and a process that ends between them leaves no
/// file.
SystemError moveIntoPlace(const Replacement& replacement) noexcept {
  takeOverAttributes(replacement);
  constexpr DWORD kFlags = MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH;
  return MoveFileExA(replacement.temporary, replacement.target, kFlags) != FALSE ? 0
                                                                                 : errnoOf(GetLastError());
}

/// The full name of the file that this name leads to; false when the system cannot tell.
bool findLinked(const char* name, char (&linked)[sizeof Replacement::target]) noexcept {
  constexpr DWORD kEveryone = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
  const HANDLE file = CreateFileA(name, FILE_READ_ATTRIBUTES, kEveryone, nullptr, OPEN_EXISTING,
                                  FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == INVALID_HANDLE_VALUE) return false;
  const DWORD length = GetFinalPathNameByHandleA(file, linked, sizeof linked, FILE_NAME_NORMALIZED);
  CloseHandle(file);
  // Characters that the code page lacks name no file or another one.
  return length > 0 && length < sizeof linked && GetFileAttributesA(linked) != INVALID_FILE_ATTRIBUTES;
}

/// So that a link stays. One that leads nowhere stays, too, and what it names is not made.
SystemError followLink(Replacement& replacement, DWORD attributes) noexcept {
  char linked[sizeof replacement.target];
  if (findLinked(replacement.target, linked)) {
    std::memcpy(replacement.target, linked, std::strlen(linked) + 1);
    return 0;
  }
  return (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0 ? ENOENT : 0;
}

/// "nul", "con" and their like, as full names. They cannot be replaced.
bool isDevice(const char* name) noexcept {
  return std::strncmp(name, "\\\\.\\", 4) == 0;
}

SystemError openItself(Replacement& replacement) noexcept {
  replacement.temporary[0] = '\0';
  replacement.descriptor = _open(replacement.target, _O_WRONLY | _O_BINARY | _O_NOINHERIT);
  return replacement.descriptor >= 0 ? 0 : errno;
}

SystemError startBesideExisting(Replacement& replacement, DWORD attributes) noexcept {
  constexpr DWORD kUnwritable = FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_DIRECTORY;
  if ((attributes & kUnwritable) != 0) return EACCES;
  if (const SystemError error = followLink(replacement, attributes); error != 0) return error;
  // A link has attributes of its own.
  if ((GetFileAttributesA(replacement.target) & kUnwritable) != 0) return EACCES;
  if (const SystemError error = openBeside(replacement); error != 0) return error;
  takeOverRights(replacement);
  return 0;
}

}  // namespace

SystemError startReplacement(const char* name, Replacement& replacement) noexcept {
  replacement.descriptor = -1;
  const DWORD length = GetFullPathNameA(name, sizeof replacement.target, replacement.target, nullptr);
  if (length == 0) return errnoOf(GetLastError());
  if (length >= sizeof replacement.target) return ENAMETOOLONG;
  if (isDevice(replacement.target)) return openItself(replacement);
  const DWORD attributes = GetFileAttributesA(replacement.target);
  return attributes == INVALID_FILE_ATTRIBUTES ? openBeside(replacement)
                                               : startBesideExisting(replacement, attributes);
}

SystemError finishReplacement(Replacement& replacement) noexcept {
  const bool isBeside = replacement.temporary[0] != '\0';
  SystemError error = !isBeside || _commit(replacement.descriptor) == 0 ? 0 : errno;
  if (_close(replacement.descriptor) != 0 && error == 0) error = errno;
  replacement.descriptor = -1;
  if (!isBeside) return error;
  if (error == 0) error = moveIntoPlace(replacement);
  if (error != 0) _unlink(replacement.temporary);
  return error;
}

void dropReplacement(Replacement& replacement) noexcept {
  _close(replacement.descriptor);
  replacement.descriptor = -1;
  if (replacement.temporary[0] != '\0') _unlink(replacement.temporary);
}

}  // namespace vel::platform
