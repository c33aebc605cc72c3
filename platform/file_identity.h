// Identifies a file independently of its names.
#pragma once

#include <cstdint>

namespace vel::platform {

/// Distinguishes entries that exist at the same time; all zeros stands for no entry.
struct FileIdentity {
  std::uint64_t volume = 0;  ///< the device, or the volume's serial number
  std::uint64_t number = 0;  ///< the inode, or the file's index

  bool operator==(const FileIdentity&) const = default;
};

}  // namespace vel::platform
