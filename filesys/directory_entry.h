// What the name of a directory's entry says about it.
#pragma once

namespace vel::filesys {

/// ".cache" and "a.b" count neither as sub-directory nor as parent. Keep.
inline bool isSubDirectoryName(const char* name) noexcept {
  return name[0] != '.' && name[0] != '\0' && name[1] != '.';
}

}  // namespace vel::filesys
