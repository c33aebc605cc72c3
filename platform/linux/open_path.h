// Places of the file system held by descriptors, and a path to what a descriptor has open. Another system
// supplies both in a folder of its own.
#pragma once

#include <fcntl.h>

#include <cstdio>

namespace vel::platform {

/// The flag that opens an entry only as a place: neither its contents nor permission to read it are needed.
inline constexpr int kOpenAsPlace = O_PATH;

/// A path that leads to the open file whatever its name is by now, even if it has none.
struct OpenPath {
  explicit OpenPath(int descriptor) noexcept {
    std::snprintf(text, sizeof text, "/proc/self/fd/%d", descriptor);
  }
  char text[32];
};

}  // namespace vel::platform
