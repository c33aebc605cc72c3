// Lists directories, many entries at a time, and reaches their entries relative to the open directory: by the
// native calls, because those of Win32 accept paths only.
#include "platform/listing.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <cwchar>

#define WIN32_LEAN_AND_MEAN
#include <windows.h>
#include <winternl.h>

#include "platform/windows/beside.h"
#include "platform/windows/file_words.h"
#include "platform/windows/handles.h"
#include "platform/windows/links.h"
#include "platform/windows/wide_path.h"

namespace vel::platform {

namespace {

constexpr ACCESS_MASK kToList = FILE_LIST_DIRECTORY | FILE_TRAVERSE | FILE_READ_ATTRIBUTES | SYNCHRONIZE;
/// The longest name of an entry, in units.
constexpr std::size_t kMaxUnits = 256;

HANDLE handleOf(const Listing& listing) noexcept {
  return reinterpret_cast<HANDLE>(listing.handle);
}

/// A name in the spelling of the system, aligned and terminated.
class EntryName {
 public:
  explicit EntryName(std::string_view systemName) noexcept {
    const std::size_t size = std::min(systemName.size(), kMaxUnits * sizeof(WCHAR));
    std::memcpy(text_.data(), systemName.data(), size);
    size_ = static_cast<USHORT>(size);
  }
  UNICODE_STRING get() noexcept { return {size_, size_, text_.data()}; }

 private:
  std::array<WCHAR, kMaxUnits + 1> text_{};
  USHORT size_;
};

/// Opens an entry relative to the directory.
NativeError openEntry(const Listing& parent, std::string_view systemName, ACCESS_MASK access, ULONG options,
                      HANDLE& opened) noexcept {
  EntryName text(systemName);
  UNICODE_STRING name = text.get();
  OBJECT_ATTRIBUTES attributes;
  InitializeObjectAttributes(&attributes, &name, 0, handleOf(parent), nullptr);
  IO_STATUS_BLOCK status{};
  return RtlNtStatusToDosError(
      NtCreateFile(&opened, access | SYNCHRONIZE, &attributes, &status, nullptr, 0, kShareAll, FILE_OPEN,
                   options | FILE_OPEN_FOR_BACKUP_INTENT | FILE_SYNCHRONOUS_IO_NONALERT, nullptr, 0));
}

/// Adopts the handle if it is a directory's. ERROR_DIRECTORY counts as ENOTDIR.
NativeError adopt(HANDLE opened, DirectoryLink link, Listing& listing) noexcept {
  FileHandle handle(opened);
  FullStatus status;
  if (const NativeError error = statusOfHandle(opened, status); error != 0) return error;
  const bool isAccepted = status.kind == EntryKind::Directory ||
                          (status.kind == EntryKind::Link && link == DirectoryLink::Follow);
  if (!isAccepted) return ERROR_DIRECTORY;
  listing.at = listing.size = 0;
  listing.handle = reinterpret_cast<std::intptr_t>(handle.release());
  return 0;
}

NativeError fill(Listing& listing) noexcept {
  const bool isFilled = GetFileInformationByHandleEx(handleOf(listing), FileIdBothDirectoryInfo,
                                                     listing.buffer, sizeof listing.buffer) != FALSE;
  listing.at = 0;
  // The last entry has no successor, so the size of all is not needed.
  listing.size = isFilled ? sizeof listing.buffer : 0;
  return isFilled ? 0 : GetLastError();
}

bool isDots(std::wstring_view name) noexcept {
  return name == L"." || name == L"..";
}

/// Takes the next entry from the buffer.
const FILE_ID_BOTH_DIR_INFO& take(Listing& listing) noexcept {
  const auto& found = *reinterpret_cast<const FILE_ID_BOTH_DIR_INFO*>(listing.buffer + listing.at);
  listing.at = found.NextEntryOffset != 0 ? listing.at + found.NextEntryOffset : listing.size;
  return found;
}

}  // namespace

const char* shownName(std::string_view systemName, char (&buffer)[kEntryNameCapacity],
                      std::size_t& size) noexcept {
  EntryName name(systemName);
  const UNICODE_STRING text = name.get();
  const std::wstring_view view(text.Buffer, text.Length / sizeof(WCHAR));
  const int written = narrowEntryName(view, buffer, kEntryNameCapacity - 1);
  size = static_cast<std::size_t>(written);
  buffer[size] = '\0';
  return written > 0 ? buffer : nullptr;
}

NativeError openListing(const char* name, DirectoryLink link, Listing& listing) noexcept {
  const WidePath path(name);
  if (path.error() != 0) return path.error();
  if (link == DirectoryLink::Refuse && isLinkNamed(path)) return ERROR_DIRECTORY;
  const DWORD flags = FILE_FLAG_BACKUP_SEMANTICS |
                      (link == DirectoryLink::Refuse ? DWORD{FILE_FLAG_OPEN_REPARSE_POINT} : DWORD{0});
  const HANDLE opened = CreateFileW(path.get(), kToList, kShareAll, nullptr, OPEN_EXISTING, flags, nullptr);
  return opened == INVALID_HANDLE_VALUE ? GetLastError() : adopt(opened, link, listing);
}

NativeError openListed(const Listing& parent, std::string_view systemName, DirectoryLink link,
                       Listing& listing) noexcept {
  HANDLE opened = nullptr;
  const ULONG options =
      FILE_DIRECTORY_FILE | (link == DirectoryLink::Refuse ? ULONG{FILE_OPEN_REPARSE_POINT} : ULONG{0});
  const NativeError error = openEntry(parent, systemName, kToList, options, opened);
  return error != 0 ? error : adopt(opened, link, listing);
}

void closeListing(Listing& listing) noexcept {
  if (listing.handle != -1) CloseHandle(handleOf(listing));
  listing.handle = -1;
}

NativeError nextListed(Listing& listing, ListedEntry& entry, ListingStep& step) noexcept {
  for (;;) {
    if (listing.at == listing.size) {
      const NativeError error = fill(listing);
      step = ListingStep::End;
      if (error == ERROR_NO_MORE_FILES || error == ERROR_FILE_NOT_FOUND) return 0;
      if (error != 0) return error;
    }
    const FILE_ID_BOTH_DIR_INFO& found = take(listing);
    const std::wstring_view name(&found.FileName[0], found.FileNameLength / sizeof(WCHAR));
    if (isDots(name)) continue;
    // For a reparse point, this field holds the tag instead of the size of the extended attributes.
    entry.kind = kindFrom(found.FileAttributes, found.EaSize);
    entry.systemName = {reinterpret_cast<const char*>(name.data()), name.size() * sizeof(WCHAR)};
    step = ListingStep::Entry;
    return 0;
  }
}

NativeError identityOfListing(const Listing& listing, FileIdentity& identity) noexcept {
  FullStatus status;
  const NativeError error = statusOfHandle(handleOf(listing), status);
  identity = status.identity;
  return error;
}

FileIdentity identityOfProcessRoot() noexcept {
  return {};
}

bool isRoot(const Listing& listing, const FileIdentity&) noexcept {
  struct {
    FILE_NAME_INFO info;
    std::array<WCHAR, 1024> rest;
  } name;
  if (GetFileInformationByHandleEx(handleOf(listing), FileNameInfo, &name, sizeof name) == FALSE)
    return GetLastError() != ERROR_MORE_DATA;
  const std::wstring_view path(&name.info.FileName[0], name.info.FileNameLength / sizeof(WCHAR));
  // The name within the volume; within a network it begins with server and share.
  const auto separators = std::count(path.begin(), path.end(), L'\\');
  if (separators != 2) return path.size() <= 1;
  GrowingText full;
  const auto finalPath = [&](wchar_t* out, DWORD room) {
    return GetFinalPathNameByHandleW(handleOf(listing), out, room, FILE_NAME_NORMALIZED);
  };
  return !full.appendBy(finalPath) || isRootPath(full.view());
}

NativeError statusOfListed(const Listing& parent, std::string_view systemName, LinkMeans links,
                           FullStatus& status) noexcept {
  HANDLE opened = nullptr;
  const ULONG options = links == LinkMeans::Itself ? ULONG{FILE_OPEN_REPARSE_POINT} : ULONG{0};
  const NativeError error = openEntry(parent, systemName, FILE_READ_ATTRIBUTES, options, opened);
  if (error != 0) return error;
  const FileHandle handle(opened);
  return statusOfHandle(opened, status);
}

NativeError removeListed(const Listing& parent, std::string_view systemName, bool isDirectory) noexcept {
  HANDLE opened = nullptr;
  const ULONG options = FILE_OPEN_REPARSE_POINT | (isDirectory ? ULONG{FILE_DIRECTORY_FILE} : ULONG{0});
  constexpr ACCESS_MASK kToRemove = DELETE | FILE_READ_ATTRIBUTES | FILE_WRITE_ATTRIBUTES;
  const NativeError error = openEntry(parent, systemName, kToRemove, options, opened);
  if (error != 0) return error;
  const FileHandle handle(opened);
  FullStatus status;
  // An entry that was listed as a file but has become a directory meanwhile must not be removed.
  const bool isOther =
      !isDirectory && statusOfHandle(opened, status) == 0 && status.kind == EntryKind::Directory;
  return isOther ? NativeError{ERROR_DIRECTORY} : markDeleted(opened);
}

}  // namespace vel::platform
