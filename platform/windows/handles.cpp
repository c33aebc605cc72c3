// Status and deletion of entries by open handles.
#include "platform/windows/handles.h"

#include <cstdint>

#include "platform/windows/beside.h"
#include "platform/windows/file_words.h"

namespace vel::platform {

namespace {

/// FILETIME counts ticks of 100 ns since 1601; file systems without a time give 0.
std::int64_t nanosecondsSince1970(LARGE_INTEGER time) noexcept {
  constexpr std::int64_t kTicksFrom1601 = 116'444'736'000'000'000;
  return time.QuadPart == 0 ? kUnknownTime : (time.QuadPart - kTicksFrom1601) * 100;
}

std::uint32_t permissionsOf(DWORD attributes) noexcept {
  const bool isDirectory = (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
  const bool isReadOnly = !isDirectory && (attributes & FILE_ATTRIBUTE_READONLY) != 0;
  return 4U | (isReadOnly ? 0U : 2U) | (isDirectory ? 1U : 0U);
}

/// What newer systems do in one step.
struct DispositionEx {
  DWORD flags;
};
constexpr DWORD kDelete = 1, kPosix = 2, kIgnoreReadOnly = 0x10;
constexpr auto kDispositionEx = static_cast<FILE_INFO_BY_HANDLE_CLASS>(21);

bool makeWritable(HANDLE file, FILE_BASIC_INFO& before) noexcept {
  if (GetFileInformationByHandleEx(file, FileBasicInfo, &before, sizeof before) == FALSE) return false;
  if ((before.FileAttributes & FILE_ATTRIBUTE_READONLY) == 0) return false;
  FILE_BASIC_INFO changed{};
  changed.FileAttributes = before.FileAttributes & ~DWORD{FILE_ATTRIBUTE_READONLY};
  if (changed.FileAttributes == 0) changed.FileAttributes = FILE_ATTRIBUTE_NORMAL;
  return SetFileInformationByHandle(file, FileBasicInfo, &changed, sizeof changed) != FALSE;
}

NativeError markPlainly(HANDLE file) noexcept {
  FILE_DISPOSITION_INFO disposition{TRUE};
  return errorUnless(SetFileInformationByHandle(file, FileDispositionInfo, &disposition, sizeof disposition));
}

}  // namespace

bool isLinkTag(DWORD attributes, DWORD tag) noexcept {
  return (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0 && (tag == 0 || IsReparseTagNameSurrogate(tag));
}

EntryKind kindFrom(DWORD attributes, DWORD tag) noexcept {
  if (isLinkTag(attributes, tag)) return EntryKind::Link;
  if ((attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) return EntryKind::Directory;
  return (attributes & FILE_ATTRIBUTE_DEVICE) != 0 ? EntryKind::Other : EntryKind::File;
}

HANDLE openToQuery(const wchar_t* name, DWORD access) noexcept {
  return CreateFileW(name, FILE_READ_ATTRIBUTES | access, kShareAll, nullptr, OPEN_EXISTING,
                     FILE_FLAG_BACKUP_SEMANTICS, nullptr);
}

NativeError statusOfHandle(HANDLE file, FullStatus& status) noexcept {
  if (GetFileType(file) != FILE_TYPE_DISK) {
    status = {EntryKind::Other, 6, 0, 1, kUnknownTime, kUnknownTime, kUnknownTime, kUnknownTime, {}};
    return 0;
  }
  BY_HANDLE_FILE_INFORMATION info;
  FILE_BASIC_INFO basic;
  if (GetFileInformationByHandle(file, &info) == FALSE) return GetLastError();
  if (GetFileInformationByHandleEx(file, FileBasicInfo, &basic, sizeof basic) == FALSE) return GetLastError();
  FILE_ATTRIBUTE_TAG_INFO tag{};
  // Not all file systems have tags; 0 is that of an unknown link.
  GetFileInformationByHandleEx(file, FileAttributeTagInfo, &tag, sizeof tag);
  status.kind = kindFrom(info.dwFileAttributes, tag.ReparseTag);
  status.ownerPermissions = permissionsOf(info.dwFileAttributes);
  status.sizeInBytes =
      status.kind == EntryKind::Directory ? 0 : joined(info.nFileSizeHigh, info.nFileSizeLow);
  status.linkCount = info.nNumberOfLinks;
  status.modified = nanosecondsSince1970(basic.LastWriteTime);
  status.accessed = nanosecondsSince1970(basic.LastAccessTime);
  status.changed = nanosecondsSince1970(basic.ChangeTime);
  status.created = nanosecondsSince1970(basic.CreationTime);
  status.identity = identityIn(info);
  return 0;
}

NativeError markDeleted(HANDLE file) noexcept {
  DispositionEx wanted{kDelete | kPosix | kIgnoreReadOnly};
  if (SetFileInformationByHandle(file, kDispositionEx, &wanted, sizeof wanted) != FALSE) return 0;
  const NativeError error = markPlainly(file);
  FILE_BASIC_INFO before;
  if (error != ERROR_ACCESS_DENIED || !makeWritable(file, before)) return error;
  const NativeError second = markPlainly(file);
  if (second != 0) SetFileInformationByHandle(file, FileBasicInfo, &before, sizeof before);
  return second;
}

int narrowEntryName(std::wstring_view name, char* out, int capacity) noexcept {
  return WideCharToMultiByte(CP_UTF8, WC_ERR_INVALID_CHARS, name.data(), static_cast<int>(name.size()), out,
                             capacity, nullptr, nullptr);
}

}  // namespace vel::platform
