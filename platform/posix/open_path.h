// A path to what a descriptor has open, whatever its name is by now; also where it has none.
#pragma once

#include <cstdio>

namespace vel::platform {

struct OpenPath {
  explicit OpenPath(int descriptor) noexcept {
    std::snprintf(text, sizeof text, "/proc/self/fd/%d", descriptor);
  }
  char text[32];
};

}  // namespace vel::platform
