// Small facts about Windows' file functions that several files need.
#pragma once

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <cstdint>
#include <string_view>

#include "platform/file_identity.h"
#include "platform/files.h"

namespace vel::platform {

/// The sharing mode of whoever only looks at a file: everybody else may go on reading, writing and removing
/// it.
inline constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

/// The attributes that the seam reports.
inline constexpr std::uint32_t kKnownAttributes = kAttributeReadOnly | kAttributeHidden | kAttributeDirectory;

/// Joins the high and low 32 bits in which Windows gives sizes, file indexes and times.
constexpr std::uint64_t joined(DWORD high, DWORD low) noexcept {
  return std::uint64_t{high} << 32 | low;
}

/// Volume and file index together identify a file while it is open.
inline FileIdentity identityIn(const BY_HANDLE_FILE_INFORMATION& info) noexcept {
  return {info.dwVolumeSerialNumber, joined(info.nFileIndexHigh, info.nFileIndexLow)};
}

inline constexpr std::uint64_t kEmptyHash = 0xCBF29CE484222325;

/// FNV-1a over the units of a text, which continues the hash of a text before it.
inline std::uint64_t hashOf(std::wstring_view text, std::uint64_t before = kEmptyHash) noexcept {
  std::uint64_t hash = before;
  for (const wchar_t unit : text) hash = (hash ^ unit) * 0x100000001B3;
  return hash;
}

}  // namespace vel::platform
