// Small facts about Windows' file functions that several files need.
#pragma once

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <cstdint>

namespace vel::platform {

/// The sharing mode of whoever only looks at a file: everybody else may go on reading, writing and removing
/// it.
inline constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

/// Joins the halves in which Windows gives sizes, file indexes and times.
constexpr std::uint64_t joined(DWORD high, DWORD low) noexcept {
  return std::uint64_t{high} << 32 | low;
}

}  // namespace vel::platform
