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

#include <cwchar>
#include <iterator>
#include <string_view>
#include <utility>

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include "platform/file_lock.h"
#include "platform/windows/beside.h"
#include "platform/windows/file_words.h"
#include "platform/windows/native_text.h"
#include "platform/windows/system_errors.h"

namespace vel::platform {

namespace {

/// Opens a file or directory to query it. Returns null if it does not exist.
HANDLE openAttributes(const wchar_t* name) noexcept {
  const HANDLE file = CreateFileW(name, FILE_READ_ATTRIBUTES, kShareAll, nullptr, OPEN_EXISTING,
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

/// Returns the length of the name with all links resolved; 0 if the entry does not exist.
DWORD findFinalName(const wchar_t* name, WideBuffer& found) noexcept {
  const HANDLE entry = openAttributes(name);
  if (entry == nullptr) return 0;
  const DWORD length = finalName(entry, found);
  CloseHandle(entry);
  return length;
}

/// Hashes a part of a file's full name in upper case: file names ignore case, object names do not. The
/// invariant locale gives every process the same spelling, and so does UTF-16, whatever the encoding of its
/// narrow texts. Returns false if memory runs out.
bool hashUpperCase(std::wstring_view name, std::uint64_t& hash) noexcept {
  WideBuffer upperCase;
  if (name.empty()) return true;
  const auto length = static_cast<int>(name.size());
  if (!upperCase.reserve(name.size()) ||
      LCMapStringW(LOCALE_INVARIANT, LCMAP_UPPERCASE, name.data(), length, upperCase.get(), length) != length)
    return false;
  hash = hashOf(std::wstring_view(upperCase.get(), name.size()), hash);
  return true;
}

/// Finds one hash for all paths to a file: links resolved and the name completed. Opens the file only if it
/// is a link, because a process that waits for the lock must not keep its holder from replacing the file;
/// otherwise opens only the directory, which a missing file has, too.
bool findCommonHash(const wchar_t* name, std::uint64_t& hash) noexcept {
  hash = kEmptyHash;
  const DWORD attributes = GetFileAttributesW(name);
  WideBuffer common;
  if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0) {
    const DWORD length = findFinalName(name, common);
    return length != 0 && hashUpperCase({common.get(), length}, hash);
  }
  WideBuffer full;
  if (fullName(name, full) == 0) return false;
  wchar_t* const separator = std::wcsrchr(full.get(), L'\\');
  if (separator == nullptr || separator[1] == L'\0') return false;
  const wchar_t first = std::exchange(separator[1], L'\0');
  const DWORD length = findFinalName(full.get(), common);
  separator[1] = first;
  if (length == 0) return false;
  const std::wstring_view end = common.get()[length - 1] == L'\\' ? L"" : L"\\";
  return hashUpperCase({common.get(), length}, hash) && hashUpperCase(end, hash) &&
         hashUpperCase(separator + 1, hash);
}

/// Creates the named object and returns it; null if it existed already (`isBusy`) or cannot be created. Its
/// existence is the lock, it is never waited for. Its null access list lets every user find it.
HANDLE makeObject(std::uint64_t hash, bool& isBusy) noexcept {
  // Two files with the same hash exclude each other, which is harmless.
  wchar_t name[64];
  std::swprintf(name, std::size(name), L"Global\\qamc5032-file-%016llx",
                static_cast<unsigned long long>(hash));
  SECURITY_DESCRIPTOR everyone;
  InitializeSecurityDescriptor(&everyone, SECURITY_DESCRIPTOR_REVISION);
  SetSecurityDescriptorDacl(&everyone, TRUE, nullptr, FALSE);
  SECURITY_ATTRIBUTES attributes{sizeof attributes, &everyone, FALSE};
  const HANDLE object = CreateMutexW(&attributes, FALSE, name);
  // Access is denied if somebody created the object for themselves alone.
  const DWORD error = GetLastError();
  isBusy = error == ERROR_ALREADY_EXISTS || error == ERROR_ACCESS_DENIED;
  if (isBusy && object != nullptr) CloseHandle(object);
  return isBusy ? nullptr : object;
}

/// Whether the full name of `name` is a device's.
bool namesDevice(const wchar_t* name) noexcept {
  WideBuffer full;
  return fullName(name, full) != 0 && isDevice(full.get());
}

bool isDirectory(const wchar_t* name) noexcept {
  const DWORD attributes = GetFileAttributesW(name);
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

SystemError stateAt(const wchar_t* name, FileState& state) noexcept {
  state = {};
  if (namesDevice(name)) return 0;
  const HANDLE file = openAttributes(name);
  if (file == nullptr) return isMissing(GetLastError()) ? 0 : errnoOf(GetLastError());
  const SystemError error = stateIn(file, state);
  CloseHandle(file);
  return error;
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
  return withWideName(name, [&state](const wchar_t* path) { return stateAt(path, state); });
}

LockResult tryLockFile(const char* name, FileLock& lock) noexcept {
  lock = {};
  const WideName wide(name);
  if (!wide.isValid()) return LockResult::Failed;
  if (namesDevice(wide.get())) return LockResult::Locked;
  std::uint64_t hash = 0;
  if (isDirectory(wide.get()) || !findCommonHash(wide.get(), hash)) return LockResult::Failed;
  bool isBusy = false;
  lock.system = makeObject(hash, isBusy);
  if (lock.system == nullptr) return isBusy ? LockResult::Busy : LockResult::Failed;
  // The state is read under the lock; one read before could be an older file's.
  if (stateAt(wide.get(), lock.file) == 0) return LockResult::Locked;
  unlockFile(lock);
  return LockResult::Failed;
}

void unlockFile(FileLock& lock) noexcept {
  if (lock.system == nullptr) return;
  CloseHandle(lock.system);
  lock = {};
}

}  // namespace vel::platform
