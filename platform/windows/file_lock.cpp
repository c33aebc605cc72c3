// Advisory locks of files by named objects.
//
// A lock of the file itself would keep it open, and an open file cannot be replaced. So the lock is a named
// kernel object, whose name is a hash of the file's full name. Whoever creates the object has the lock;
// whoever finds it there already does not. The system removes the object when its last handle closes, at the
// latest with the process:
//
//   "C:\dir\x.ini" -> links resolved, upper case -> hash -> "Global\...-file-<hash>" -> created or busy
#include <fcntl.h>
#include <io.h>

#include <cstdio>
#include <cstring>
#include <string_view>

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include "platform/file_lock.h"
#include "platform/path_length.h"
#include "platform/windows/beside.h"
#include "platform/windows/file_words.h"
#include "platform/windows/system_errors.h"

namespace vel::platform {

namespace {

/// Opens a file or directory to query it. Returns null if it does not exist.
HANDLE openAttributes(const char* name) noexcept {
  const HANDLE file = CreateFileA(name, FILE_READ_ATTRIBUTES, kShareAll, nullptr, OPEN_EXISTING,
                                  FILE_FLAG_BACKUP_SEMANTICS, nullptr);
  return file != INVALID_HANDLE_VALUE ? file : nullptr;
}

SystemError stateIn(HANDLE file, FileState& state) noexcept {
  BY_HANDLE_FILE_INFORMATION found;
  if (GetFileInformationByHandle(file, &found) == FALSE) return errnoOf(GetLastError());
  state = {identityIn(found), joined(found.nFileSizeHigh, found.nFileSizeLow),
           joined(found.ftLastWriteTime.dwHighDateTime, found.ftLastWriteTime.dwLowDateTime)};
  return 0;
}

bool isMissing(DWORD error) noexcept {
  return error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND;
}

/// Returns the name with all links resolved; false if the entry does not exist.
bool findFinalName(const char* name, char (&found)[kFullNameCapacity]) noexcept {
  const HANDLE entry = openAttributes(name);
  if (entry == nullptr) return false;
  const DWORD length = GetFinalPathNameByHandleA(entry, found, kFullNameCapacity, FILE_NAME_NORMALIZED);
  CloseHandle(entry);
  return length > 0 && length < kFullNameCapacity;
}

/// Finds one name for all paths to a file: links resolved and the name completed. Opens the file only if it
/// is a link, because a process that waits for the lock must not keep its holder from replacing the file;
/// otherwise opens only the directory, which a missing file has, too.
bool findCommonName(const char* name, char (&common)[kFullNameCapacity]) noexcept {
  const DWORD attributes = GetFileAttributesA(name);
  if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0)
    return findFinalName(name, common);
  char full[kFullNameCapacity];
  char* last = nullptr;
  const DWORD length = GetFullPathNameA(name, sizeof full, full, &last);
  if (length == 0 || length >= sizeof full || last == nullptr) return false;
  char component[kFullNameCapacity];
  std::snprintf(component, sizeof component, "%s", last);
  *last = '\0';
  if (!findFinalName(full, common)) return false;
  const std::size_t size = std::strlen(common);
  const char* const separator = size > 0 && common[size - 1] == '\\' ? "" : "\\";
  const int added = std::snprintf(common + size, sizeof common - size, "%s%s", separator, component);
  return added > 0 && size + static_cast<std::size_t>(added) < sizeof common;
}

/// Creates the named object and returns it; null if it existed already (`isBusy`) or cannot be created. Its
/// existence is the lock, it is never waited for. Its null access list lets every user find it.
HANDLE makeObject(const char* commonName, bool& isBusy) noexcept {
  char upperCase[kFullNameCapacity];
  // File names ignore case, object names do not. The invariant locale gives every process the same spelling.
  if (LCMapStringA(LOCALE_INVARIANT, LCMAP_UPPERCASE, commonName, -1, upperCase, sizeof upperCase) == 0)
    return nullptr;
  // Two files with the same hash exclude each other, which is harmless.
  char name[64];
  std::snprintf(name, sizeof name, "Global\\qamc5032-file-%016llx",
                static_cast<unsigned long long>(hashOf(std::string_view(upperCase))));
  SECURITY_DESCRIPTOR everyone;
  InitializeSecurityDescriptor(&everyone, SECURITY_DESCRIPTOR_REVISION);
  SetSecurityDescriptorDacl(&everyone, TRUE, nullptr, FALSE);
  SECURITY_ATTRIBUTES attributes{sizeof attributes, &everyone, FALSE};
  const HANDLE object = CreateMutexA(&attributes, FALSE, name);
  // Access is denied if somebody created the object for themselves alone.
  const DWORD error = GetLastError();
  isBusy = error == ERROR_ALREADY_EXISTS || error == ERROR_ACCESS_DENIED;
  if (isBusy && object != nullptr) CloseHandle(object);
  return isBusy ? nullptr : object;
}

/// Whether the full name of `name` is a device's.
bool namesDevice(const char* name) noexcept {
  char full[kFullNameCapacity];
  const DWORD length = GetFullPathNameA(name, sizeof full, full, nullptr);
  return length > 0 && length < sizeof full && isDevice(full);
}

bool isDirectory(const char* name) noexcept {
  const DWORD attributes = GetFileAttributesA(name);
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

}  // namespace

SystemError stateOf(int descriptor, FileState& state) noexcept {
  const auto file = reinterpret_cast<HANDLE>(_get_osfhandle(descriptor));
  // Devices and pipes do not have a file index; they cannot be replaced, either.
  if (GetFileType(file) == FILE_TYPE_DISK) return stateIn(file, state);
  state = {};
  return 0;
}

SystemError stateAt(const char* name, FileState& state) noexcept {
  state = {};
  if (namesDevice(name)) return 0;
  const HANDLE file = openAttributes(name);
  if (file == nullptr) return isMissing(GetLastError()) ? 0 : errnoOf(GetLastError());
  const SystemError error = stateIn(file, state);
  CloseHandle(file);
  return error;
}

LockResult tryLockFile(const char* name, FileLock& lock) noexcept {
  lock = {};
  if (namesDevice(name)) return LockResult::Locked;
  char commonName[kFullNameCapacity];
  if (isDirectory(name) || !findCommonName(name, commonName)) return LockResult::Failed;
  bool isBusy = false;
  lock.system = makeObject(commonName, isBusy);
  if (lock.system == nullptr) return isBusy ? LockResult::Busy : LockResult::Failed;
  // The state is read under the lock; one read before could be an older file's.
  if (stateAt(name, lock.file) == 0) return LockResult::Locked;
  unlockFile(lock);
  return LockResult::Failed;
}

void unlockFile(FileLock& lock) noexcept {
  if (lock.system == nullptr) return;
  CloseHandle(lock.system);
  lock = {};
}

}  // namespace vel::platform
