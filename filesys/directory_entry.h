// The rule for names of sub-directories, which the walker and the removal of trees share.
#pragma once

namespace vel::filesys {

/// Returns whether a directory of this name counts as a sub-directory.
/// Intentional: a dot as first or second character excludes it. Callers get false not only for "." and "..",
/// but also for ".cache" and "a.b".
inline bool isSubDirectoryName(const char* name) noexcept {
  return name[0] != '.' && name[0] != '\0' && name[1] != '.';
}

}  // namespace vel::filesys
