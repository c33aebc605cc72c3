// What open handles tell about entries.
#pragma once

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <string_view>

#include "platform/named_files.h"
#include "platform/system_error.h"

namespace vel::platform {

/// Whether a reparse point is a link. Cloud and deduplicating file systems use reparse points for ordinary
/// entries, too; only tags with the name surrogate bit stand for another name. A tag of 0 is unknown and
/// counts as a link.
bool isLinkTag(DWORD attributes, DWORD tag) noexcept;
EntryKind kindFrom(DWORD attributes, DWORD tag) noexcept;

/// Opens an entry of any kind to query or change its status, sharing it with everybody who has it open. Links
/// are followed.
HANDLE openToQuery(const wchar_t* name, DWORD access) noexcept;

/// Reads everything but the kind of links that the handle does not show.
NativeError statusOfHandle(HANDLE file, FullStatus& status) noexcept;

/// Marks an open file or empty directory for deletion, read-only or not; it needs the rights DELETE,
/// FILE_READ_ATTRIBUTES and FILE_WRITE_ATTRIBUTES.
NativeError markDeleted(HANDLE file) noexcept;

/// The last error, after a call that returned false; 0 after one that succeeded.
inline NativeError errorUnless(BOOL succeeded) noexcept {
  return succeeded != FALSE ? 0 : GetLastError();
}

/// Wide names of entries as UTF-8. Returns the size, 0 if the name is not well-formed or does not fit.
int narrowEntryName(std::wstring_view name, char* out, int capacity) noexcept;

}  // namespace vel::platform
