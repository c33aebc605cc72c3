// Lists, creates, enters and removes directories.
//
// A tree is removed through handles: each entry is opened relative to the handle of the directory that listed
// it, and deleted by its own handle. Replacing a component of the path by a junction meanwhile does not
// divert the removal to another tree. The Win32 functions accept paths only, so the native calls are used,
// whose OBJECT_ATTRIBUTES have a root directory:
//
//   RootDirectory = handle of the directory, ObjectName = "entry", FILE_OPEN_REPARSE_POINT for links
#include <direct.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <cwchar>
#include <string_view>
#include <utility>

#define WIN32_LEAN_AND_MEAN
#include <windows.h>
#include <winternl.h>

#include "platform/directories.h"
#include "platform/file_identity.h"
#include "platform/files.h"
#include "platform/system_error.h"
#include "platform/windows/file_words.h"
#include "platform/windows/native_text.h"
#include "platform/windows/system_errors.h"

// This function of ntdll is documented, but mingw-w64 declares it only in its headers for drivers.
extern "C" NTSTATUS NTAPI NtQueryDirectoryFile(HANDLE directory, HANDLE event, PIO_APC_ROUTINE routine,
                                               PVOID context, PIO_STATUS_BLOCK status, PVOID buffer,
                                               ULONG length, FILE_INFORMATION_CLASS informationClass,
                                               BOOLEAN returnSingleEntry, PUNICODE_STRING pattern,
                                               BOOLEAN restart);

namespace vel::platform {

namespace {

constexpr ULONG kListing = FILE_LIST_DIRECTORY | FILE_READ_ATTRIBUTES | SYNCHRONIZE;
constexpr ULONG kLinkItself = FILE_OPEN_REPARSE_POINT | FILE_OPEN_FOR_BACKUP_INTENT;

/// Space for one entry with a name of up to kMaxPathLength characters.
union EntryBuffer {
  FILE_FULL_DIR_INFORMATION entry;
  std::array<char, sizeof(FILE_FULL_DIR_INFORMATION) + kMaxPathLength * sizeof(WCHAR)> bytes;
};

/// Whether a reparse point is a link. Cloud and deduplicating file systems use reparse points for ordinary
/// directories, too; only tags with the name surrogate bit stand for another name. A tag of 0 is unknown and
/// counts as a link.
bool isLink(DWORD attributes, DWORD tag) noexcept {
  return (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0 && (tag == 0 || IsReparseTagNameSurrogate(tag));
}

bool isDirectory(HANDLE file, DirectoryLink link) noexcept {
  FILE_ATTRIBUTE_TAG_INFO info{};
  if (GetFileInformationByHandleEx(file, FileAttributeTagInfo, &info, sizeof info) == FALSE) return false;
  if ((info.FileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0) return false;
  return link == DirectoryLink::Follow || !isLink(info.FileAttributes, info.ReparseTag);
}

/// A path without final separators, except a root's: with one, the system would follow a link. `kept` final
/// separators stay, for functions that require one.
class PathWithoutFinalSeparators : public WideName {
 public:
  explicit PathWithoutFinalSeparators(const char* name, std::size_t kept = 0) noexcept : WideName(name) {
    wchar_t* const text = get();
    const std::size_t whole = std::wcslen(text);
    std::size_t length = whole;
    const auto isSeparator = [](wchar_t c) { return c == L'\\' || c == L'/'; };
    while (length > 3 && isSeparator(text[length - 1])) --length;
    text[std::min(length + kept, whole)] = L'\0';
  }
};

/// Looks at the path, for systems that open a link's target despite FILE_FLAG_OPEN_REPARSE_POINT: their
/// handle does not show the link.
bool isLinkByPath(const wchar_t* path) noexcept {
  WIN32_FIND_DATAW found{};
  const HANDLE search = FindFirstFileW(path, &found);
  if (search == INVALID_HANDLE_VALUE) return false;
  FindClose(search);
  return isLink(found.dwFileAttributes, found.dwReserved0);
}

/// Whether removing this path would remove a link's target instead of the link: the path is a link, but the
/// handle opened with FILE_FLAG_OPEN_REPARSE_POINT is an ordinary directory's. True if it cannot be opened.
bool leadsElsewhere(const wchar_t* path) noexcept {
  if (!isLinkByPath(path)) return false;
  const HANDLE opened = CreateFileW(path, FILE_READ_ATTRIBUTES, kShareAll, nullptr, OPEN_EXISTING,
                                    FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OPEN_REPARSE_POINT, nullptr);
  if (opened == INVALID_HANDLE_VALUE) return true;
  const bool isTarget = isDirectory(opened, DirectoryLink::Refuse);
  CloseHandle(opened);
  return isTarget;
}

/// Replaces the file index on file systems without one: a hash of the name within the volume.
std::uint64_t hashOfName(HANDLE file) noexcept {
  struct {
    FILE_NAME_INFO info;
    std::array<WCHAR, 1024> rest;
  } name;
  if (GetFileInformationByHandleEx(file, FileNameInfo, &name, sizeof name) == FALSE) return 0;
  return hashOf(std::wstring_view(name.info.FileName, name.info.FileNameLength / sizeof(WCHAR)));
}

SystemError readIdentity(HANDLE file, FileIdentity& identity) noexcept {
  BY_HANDLE_FILE_INFORMATION info;
  if (GetFileInformationByHandle(file, &info) == FALSE) return errnoOf(GetLastError());
  identity = identityIn(info);
  if (identity.number == 0) identity.number = hashOfName(file);
  return 0;
}

/// Opens a directory and reads its identity. Returns the system's error; ERROR_DIRECTORY if it is not a
/// directory.
DWORD identityOfDirectory(const wchar_t* path, FileIdentity& identity) noexcept {
  const HANDLE opened = CreateFileW(path, FILE_READ_ATTRIBUTES, kShareAll, nullptr, OPEN_EXISTING,
                                    FILE_FLAG_BACKUP_SEMANTICS, nullptr);
  if (opened == INVALID_HANDLE_VALUE) return GetLastError();
  const bool isKnown = isDirectory(opened, DirectoryLink::Follow) && readIdentity(opened, identity) == 0;
  CloseHandle(opened);
  return isKnown ? ERROR_SUCCESS : ERROR_DIRECTORY;
}

/// Returns the separator after the shortest prefix of a full path that can be a root: a drive, or a server
/// with its share, which can only be opened together. The "." or "?" of a device path is not a server:
///
///   C:\dir               ends after  C:
///   \\server\share\dir   ends after  \\server\share
///   \\?\C:\dir           ends after  \\?
wchar_t* endOfFirstRoot(wchar_t* path) noexcept {
  const std::wstring_view start(path, 4);
  wchar_t* end = std::wcschr(path, L'\\');
  if (!start.starts_with(L"\\\\")) return end;
  end = std::wcschr(path + 2, L'\\');
  if (start == L"\\\\?\\" || start == L"\\\\.\\" || end == nullptr) return end;
  return std::wcschr(end + 1, L'\\');
}

DWORD openAt(HANDLE place, const DirectoryEntry& entry, ACCESS_MASK access, ULONG options,
             HANDLE& opened) noexcept {
  std::array<WCHAR, sizeof entry.systemName / sizeof(WCHAR)> text;
  std::memcpy(text.data(), entry.systemName, sizeof entry.systemName);
  const auto length = static_cast<USHORT>(std::wcslen(text.data()) * sizeof(WCHAR));
  UNICODE_STRING name{length, length, text.data()};
  OBJECT_ATTRIBUTES attributes;
  InitializeObjectAttributes(&attributes, &name, 0, place, nullptr);
  IO_STATUS_BLOCK status{};
  return RtlNtStatusToDosError(NtCreateFile(&opened, access, &attributes, &status, nullptr, 0, kShareAll,
                                            FILE_OPEN, options | kLinkItself, nullptr, 0));
}

/// Adopts the handle if it is a directory's, else closes it.
SystemError keepIfDirectory(HANDLE opened, DirectoryLink link, DirectoryHandle& directory) noexcept {
  if (!isDirectory(opened, link)) {
    CloseHandle(opened);
    return ENOTDIR;
  }
  directory.system = opened;
  return 0;
}

SystemError markRemoved(HANDLE file) noexcept {
  FILE_DISPOSITION_INFO disposition{TRUE};
  const BOOL done = SetFileInformationByHandle(file, FileDispositionInfo, &disposition, sizeof disposition);
  return done != FALSE ? 0 : errnoOf(GetLastError());
}

/// Converts the name to the code page of file names. Characters that it lacks become "?", and a name that is
/// too long is cut.
void setShownName(DirectoryEntry& entry, std::wstring_view name) noexcept {
  const UINT codePage = fileNameCodePage();
  if (narrowText(name, codePage, entry.name, sizeof entry.name) == ERROR_SUCCESS) return;
  entry.name[readableText(name, codePage, Similar::Refuse, entry.name, sizeof entry.name - 1)] = '\0';
}

void describe(const FILE_FULL_DIR_INFORMATION& found, DirectoryEntry& entry) noexcept {
  std::array<WCHAR, sizeof entry.systemName / sizeof(WCHAR)> name{};
  const std::size_t length = std::min(found.FileNameLength / sizeof(WCHAR), name.size() - 1);
  std::memcpy(name.data(), &found.FileName[0], length * sizeof(WCHAR));
  std::memcpy(entry.systemName, name.data(), sizeof entry.systemName);
  setShownName(entry, {name.data(), length});
  entry.attributes = found.FileAttributes & kKnownAttributes;
  // For a reparse point, this field holds the tag instead of the size of the extended attributes.
  if (isLink(found.FileAttributes, found.EaSize)) entry.attributes &= ~kAttributeDirectory;
}

}  // namespace

SystemError openDirectory(const char* name, DirectoryLink link, DirectoryHandle& directory) noexcept {
  directory = {};
  const PathWithoutFinalSeparators path(name);
  if (!path.isValid()) return errnoOf(path.error());
  // Both checks are needed: this one for systems whose handles do not show links, keepIfDirectory for a link
  // that is put in place between the two.
  if (link == DirectoryLink::Refuse && isLinkByPath(path.get())) return ENOTDIR;
  const DWORD flags = link == DirectoryLink::Refuse ? FILE_FLAG_OPEN_REPARSE_POINT : 0;
  const HANDLE opened = CreateFileW(path.get(), kListing, kShareAll, nullptr, OPEN_EXISTING,
                                    FILE_FLAG_BACKUP_SEMANTICS | flags, nullptr);
  if (opened == INVALID_HANDLE_VALUE) return errnoOf(GetLastError());
  return keepIfDirectory(opened, link, directory);
}

void closeDirectory(DirectoryHandle& directory) noexcept {
  if (directory.system != nullptr) CloseHandle(directory.system);
  directory = {};
}

SystemError identityOf(const DirectoryHandle& directory, FileIdentity& identity) noexcept {
  return readIdentity(static_cast<HANDLE>(directory.system), identity);
}

// Tries longer and longer prefixes of the path: the first directory that can be opened is the root, since
// whatever precedes it (a device namespace, a server) only leads there.
SystemError identityOfRoot(const char* name, FileIdentity& identity) noexcept {
  const WideName wide(name);
  if (!wide.isValid()) return errnoOf(wide.error());
  WideBuffer path;
  const DWORD length = fullName(wide.get(), path);
  if (length == 0) return errnoOf(GetLastError());
  wchar_t* const last = path.get() + length - 1;
  if (*last != L'\\') std::wcscpy(last + 1, L"\\");
  for (wchar_t* end = endOfFirstRoot(path.get()); end != nullptr; end = std::wcschr(end + 1, L'\\')) {
    const wchar_t next = std::exchange(end[1], L'\0');
    const DWORD error = identityOfDirectory(path.get(), identity);
    end[1] = next;
    if (error == ERROR_SUCCESS) return 0;
    if (error == ERROR_ACCESS_DENIED) return EACCES;
  }
  return ENOENT;
}

SystemError nextEntry(DirectoryHandle& directory, DirectoryEntry& entry, ListingStep& step) noexcept {
  EntryBuffer buffer;
  IO_STATUS_BLOCK status{};
  const NTSTATUS result =
      NtQueryDirectoryFile(directory.system, nullptr, nullptr, nullptr, &status, buffer.bytes.data(),
                           sizeof buffer, FileFullDirectoryInformation, TRUE, nullptr, FALSE);
  step = result == 0 ? ListingStep::Entry : ListingStep::End;
  if (result == 0) {
    describe(buffer.entry, entry);
    return 0;
  }
  const DWORD error = RtlNtStatusToDosError(result);
  return error == ERROR_NO_MORE_FILES ? 0 : errnoOf(error);
}

SystemError openSubdirectory(const DirectoryHandle& directory, const DirectoryEntry& entry,
                             DirectoryHandle& opened) noexcept {
  opened = {};
  HANDLE file = nullptr;
  const DWORD error =
      openAt(directory.system, entry, kListing, FILE_DIRECTORY_FILE | FILE_SYNCHRONOUS_IO_NONALERT, file);
  return error == 0 ? keepIfDirectory(file, DirectoryLink::Refuse, opened) : errnoOf(error);
}

SystemError removeEntry(const DirectoryHandle& directory, const DirectoryEntry& entry) noexcept {
  // An entry that was listed as a file but has become a directory meanwhile must not be removed.
  const bool isListed = (entry.attributes & kAttributeDirectory) != 0;
  HANDLE file = nullptr;
  if (const DWORD error = openAt(directory.system, entry, DELETE | FILE_READ_ATTRIBUTES,
                                 isListed ? FILE_DIRECTORY_FILE : 0, file);
      error != 0)
    return errnoOf(error);
  const SystemError error =
      !isListed && isDirectory(file, DirectoryLink::Refuse) ? ENOTDIR : markRemoved(file);
  CloseHandle(file);
  return error;
}

SystemError makeDirectory(const char* name) noexcept {
  return withWideName(name, [](const wchar_t* path) { return _wmkdir(path) == 0 ? 0 : errno; });
}

SystemError removeDirectory(const char* name) noexcept {
  const PathWithoutFinalSeparators path(name, 1);
  if (!path.isValid()) return errnoOf(path.error());
  if (leadsElsewhere(PathWithoutFinalSeparators(name).get())) return ENOTDIR;
  return _wrmdir(path.get()) == 0 ? 0 : errno;
}

SystemError changeDirectory(const char* name) noexcept {
  return withWideName(name, [](const wchar_t* path) { return _wchdir(path) == 0 ? 0 : errno; });
}

}  // namespace vel::platform
