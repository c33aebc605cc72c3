// An entry of a directory as getdents64 returns it.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vel::platform {

/// The start of linux_dirent64; the NUL-terminated name follows.
struct KernelEntry {
  std::uint64_t inode;
  std::int64_t offset;
  std::uint16_t length;
  std::uint8_t type;
};
/// The name follows without padding, before sizeof(KernelEntry).
inline constexpr std::size_t kNameOffset = 19;

}  // namespace vel::platform
