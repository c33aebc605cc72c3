// Status, creating and removing of entries by names of any length.
#include "platform/named_files.h"

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <algorithm>
#include <cerrno>

#include "base/utf.h"
#include "platform/windows/beside.h"
#include "platform/windows/file_words.h"
#include "platform/windows/handles.h"
#include "platform/windows/links.h"
#include "platform/windows/random_numbers.h"
#include "platform/windows/system_errors.h"
#include "platform/windows/wide_path.h"

namespace vel::platform {

namespace {

/// Calls `act` with the translated name.
template <typename Act>
NativeError withWide(const char* name, Act act) noexcept {
  const WidePath path(name);
  return path.error() != 0 ? NativeError{path.error()} : act(path);
}

HANDLE openNamed(const WidePath& path, DWORD access, LinkMeans links) noexcept {
  const DWORD flags = FILE_FLAG_BACKUP_SEMANTICS |
                      (links == LinkMeans::Itself ? DWORD{FILE_FLAG_OPEN_REPARSE_POINT} : DWORD{0});
  return CreateFileW(path.get(), access, kShareAll, nullptr, OPEN_EXISTING, flags, nullptr);
}

bool isExecutableName(std::wstring_view name) noexcept {
  for (const std::wstring_view extension : {L".exe", L".com", L".bat", L".cmd"}) {
    if (name.size() <= extension.size()) continue;
    const auto end = name.substr(name.size() - extension.size());
    const int size = static_cast<int>(extension.size());
    if (CompareStringOrdinal(end.data(), size, extension.data(), size, TRUE) == CSTR_EQUAL) return true;
  }
  return false;
}

/// Removes a directory or a link to one. A system whose handles do not show links would remove what the link
/// leads to.
NativeError removeDirectoryNamed(const WidePath& path) noexcept {
  const FileHandle handle(openNamed(path, FILE_READ_ATTRIBUTES, LinkMeans::Itself));
  FullStatus status;
  const bool leadsElsewhere =
      isLinkNamed(path) &&
      (!handle.isOpen() || statusOfHandle(handle.get(), status) != 0 || status.kind == EntryKind::Directory);
  if (leadsElsewhere) return ERROR_DIRECTORY;
  return errorUnless(RemoveDirectoryW(path.get()));
}

NativeError removeReadOnly(const WidePath& path, DWORD attributes) noexcept {
  const DWORD writable = attributes & ~DWORD{FILE_ATTRIBUTE_READONLY};
  if (SetFileAttributesW(path.get(), writable != 0 ? writable : FILE_ATTRIBUTE_NORMAL) == FALSE)
    return GetLastError();
  if (DeleteFileW(path.get()) != FALSE) return 0;
  const NativeError error = GetLastError();
  SetFileAttributesW(path.get(), attributes);
  return error;
}

/// Whether both names lead to one entry, so that the new name differs in case, or by a link.
bool isSameEntry(const WidePath& a, const WidePath& b) noexcept {
  FullStatus ofA, ofB;
  const FileHandle handleOfA(openNamed(a, FILE_READ_ATTRIBUTES, LinkMeans::Itself)),
      handleOfB(openNamed(b, FILE_READ_ATTRIBUTES, LinkMeans::Itself));
  if (!handleOfA.isOpen() || !handleOfB.isOpen()) return false;
  return statusOfHandle(handleOfA.get(), ofA) == 0 && statusOfHandle(handleOfB.get(), ofB) == 0 &&
         ofA.identity == ofB.identity;
}

/// Whether the directory has exactly this spelling of the name.
bool hasSpelling(const WidePath& path) noexcept {
  WIN32_FIND_DATAW found{};
  const HANDLE search = FindFirstFileW(path.get(), &found);
  if (search == INVALID_HANDLE_VALUE) return false;
  FindClose(search);
  return path.view().ends_with(found.cFileName);
}

/// Renames an entry to a name that leads to it already: another case, or another link. Some systems do
/// nothing then, or find the entry itself in the way; a third name helps.
NativeError respell(const WidePath& source, const WidePath& target) noexcept {
  if (hasSpelling(target)) return ERROR_ALREADY_EXISTS;
  if (MoveFileExW(source.get(), target.get(), 0) != FALSE && hasSpelling(target)) return 0;
  GrowingText plain, third;
  plain.append(target.view());
  appendRandomEnd(plain);
  if (!translate(plain.view(), third) || MoveFileExW(source.get(), third.get(), 0) == FALSE)
    return GetLastError();
  if (MoveFileExW(third.get(), target.get(), 0) != FALSE) return 0;
  const NativeError error = GetLastError();
  MoveFileExW(third.get(), source.get(), 0);
  return error;
}

}  // namespace

bool isLinkNamed(const WidePath& path) noexcept {
  // A name with wildcards would find others; such names do not exist.
  const auto name = hasDevicePrefix(path.view()) ? path.view().substr(4) : path.view();
  if (name.find_first_of(L"*?") != std::wstring_view::npos) return false;
  WIN32_FIND_DATAW found{};
  const HANDLE search = FindFirstFileW(path.get(), &found);
  if (search == INVALID_HANDLE_VALUE) return false;
  FindClose(search);
  return isLinkTag(found.dwFileAttributes, found.dwReserved0);
}

bool isRootPath(std::wstring_view path) noexcept {
  std::wstring_view rest = path;
  if (rest.starts_with(L"\\\\?\\")) rest.remove_prefix(4);
  // "UNC\server\share" has two components more than "C:" and "Volume{...}".
  const auto separators = std::count(rest.begin(), rest.end(), L'\\');
  const bool endsInOne = rest.ends_with(L'\\');
  const auto components = separators + (endsInOne ? 0 : 1);
  return components <= (rest.starts_with(L"UNC\\") ? 3 : 1);
}

const char* nameSeparators() noexcept {
  return "\\/";
}

bool ignoresCaseOfNames() noexcept {
  return true;
}

char32_t foldedForNames(char32_t character) noexcept {
  if (character >= kFirstSupplementary) return character;
  wchar_t unit = static_cast<wchar_t>(character);
  CharUpperBuffW(&unit, 1);
  return static_cast<char32_t>(unit);
}

NativeError statusOfName(const char* name, LinkMeans links, FullStatus& status) noexcept {
  return withWide(name, [&](const WidePath& path) -> NativeError {
    const FileHandle file(openNamed(path, FILE_READ_ATTRIBUTES, links));
    if (!file.isOpen()) return GetLastError();
    if (const NativeError error = statusOfHandle(file.get(), status); error != 0) return error;
    if (links == LinkMeans::Itself && status.kind != EntryKind::Link && isLinkNamed(path))
      status.kind = EntryKind::Link;
    if (status.kind == EntryKind::File && isExecutableName(path.view())) status.ownerPermissions |= 1;
    return 0;
  });
}

NativeError nameExists(const char* name, bool& exists) noexcept {
  const NativeError error = withWide(name, [](const WidePath& path) -> NativeError {
    const DWORD attributes = GetFileAttributesW(path.get());
    if (attributes == INVALID_FILE_ATTRIBUTES) return GetLastError();
    if ((attributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0) return 0;
    const FileHandle target(openNamed(path, FILE_READ_ATTRIBUTES, LinkMeans::Target));
    return target.isOpen() ? 0 : GetLastError();
  });
  exists = error == 0;
  const SystemError kind = preciseErrno(error);
  return kind == ENOENT || kind == ENOTDIR ? 0 : error;
}

NativeError createDirectoryNamed(const char* name) noexcept {
  return withWide(name,
                  [](const WidePath& path) { return errorUnless(CreateDirectoryW(path.get(), nullptr)); });
}

// Each user has directories for temporary files of their own, so the rights that are inherited are private.
NativeError createPrivately(const char* name, bool isDirectory) noexcept {
  if (isDirectory) return createDirectoryNamed(name);
  return withWide(name, [](const WidePath& path) -> NativeError {
    const FileHandle file(
        CreateFileW(path.get(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr));
    return file.isOpen() ? 0 : GetLastError();
  });
}

NativeError removeNamed(const char* name) noexcept {
  return withWide(name, [](const WidePath& path) -> NativeError {
    const DWORD attributes = GetFileAttributesW(path.get());
    if (attributes == INVALID_FILE_ATTRIBUTES) return GetLastError();
    if ((attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) return removeDirectoryNamed(path);
    if (DeleteFileW(path.get()) != FALSE) return 0;
    const NativeError error = GetLastError();
    const bool isReadOnly = (attributes & FILE_ATTRIBUTE_READONLY) != 0;
    return error == ERROR_ACCESS_DENIED && isReadOnly ? removeReadOnly(path, attributes) : error;
  });
}

NativeError renameNamed(const char* from, const char* to, bool replaces) noexcept {
  return withWide(from, [&](const WidePath& source) {
    return withWide(to, [&](const WidePath& target) -> NativeError {
      if (isSameEntry(source, target)) return respell(source, target);
      const DWORD flags = replaces ? DWORD{MOVEFILE_REPLACE_EXISTING} : DWORD{0};
      return errorUnless(MoveFileExW(source.get(), target.get(), flags));
    });
  });
}

NativeError copyLink(const char*, const char*, bool) noexcept {
  // Creating a link needs a privilege.
  return ERROR_NOT_SAME_DEVICE;
}

NativeError copyRightsNamed(const char* from, const char* to) noexcept {
  return withWide(from, [&](const WidePath& source) {
    return withWide(to, [&](const WidePath& target) -> NativeError {
      const FileHandle old(openToQuery(source.get(), 0)),
          copy(openToQuery(target.get(), FILE_WRITE_ATTRIBUTES));
      FILE_BASIC_INFO status;
      if (!old.isOpen() || !copy.isOpen() ||
          GetFileInformationByHandleEx(old.get(), FileBasicInfo, &status, sizeof status) == FALSE)
        return GetLastError();
      return errorUnless(SetFileInformationByHandle(copy.get(), FileBasicInfo, &status, sizeof status));
    });
  });
}

std::size_t temporaryDirectory(char* out, std::size_t capacity) noexcept {
  GrowingText path;
  if (!path.appendBy([](wchar_t* text, DWORD room) { return GetTempPathW(room, text); })) return 0;
  const std::wstring_view view = path.view();
  const int units = static_cast<int>(view.size());
  const int size =
      WideCharToMultiByte(CP_UTF8, WC_ERR_INVALID_CHARS, view.data(), units, nullptr, 0, nullptr, nullptr);
  if (static_cast<std::size_t>(size) >= capacity) return static_cast<std::size_t>(size);
  WideCharToMultiByte(CP_UTF8, WC_ERR_INVALID_CHARS, view.data(), units, out, size, nullptr, nullptr);
  out[size] = '\0';
  return static_cast<std::size_t>(size);
}

NativeError unpredictableNumber(std::uint64_t& number) noexcept {
  return randomNumber(number) ? 0 : NativeError{ERROR_GEN_FAILURE};
}

}  // namespace vel::platform
