// Opens file system entries as mere places, and gives a path to the file that a descriptor has open. A port
// to another system supplies both in its own folder.
#pragma once

#include <fcntl.h>

#include <cstdio>

namespace vel::platform {

/// Opens an entry only as a place: needs no permission to read it, and gives no access to its contents.
inline constexpr int kOpenAsPlace = O_PATH;

/// A path that leads to the open file even if its name was changed or removed since.
struct OpenPath {
  explicit OpenPath(int descriptor) noexcept {
    std::snprintf(text, sizeof text, "/proc/self/fd/%d", descriptor);
  }
  char text[32];
};

}  // namespace vel::platform
