// The read-only attribute, which POSIX keeps as permissions.
#pragma once

#include <sys/stat.h>

namespace vel::platform {

inline constexpr mode_t kWriteBits = S_IWUSR | S_IWGRP | S_IWOTH;

/// A file is read-only if nobody has the permission to write to it.
inline bool isReadOnly(const struct stat& status) noexcept {
  return (status.st_mode & kWriteBits) == 0;
}

}  // namespace vel::platform
