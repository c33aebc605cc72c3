// Translates file names to the spelling that the system expects.
// A name is in backslash style if it begins with a drive, contains a backslash, or does not contain any
// separator; any other name with a "/" is in slash style and is passed unchanged. A backslash name loses its
// drive, and backslashes become "/". If an entry of exactly that name does not exist, each component that
// does not exist as written is searched for in its directory, ignoring ASCII case:
//
//   C:\Data\Tool.INI  ->  /Data/Tool.INI  ->  /data/tool.ini, if that is what exists
#pragma once

#include <array>
#include <cstddef>

#include "platform/path_length.h"

namespace vel::platform {

class NativePath {
 public:
  /// The components that are replaced by the spelling of existing entries. A component without a matching
  /// entry stays as typed.
  enum class Match { All, AllButLast };

  /// `name` must outlive the object.
  explicit NativePath(const char* name, Match match = Match::All) noexcept;
  NativePath(const NativePath&) = delete;
  NativePath& operator=(const NativePath&) = delete;

  /// Returns false for a backslash name of more than kMaxPathLength bytes. It is not truncated, because the
  /// shorter name could be another file's.
  bool fits() const noexcept { return path_ != nullptr; }
  const char* get() const noexcept { return path_; }

 private:
  const char* path_;
  std::array<char, kMaxPathLength + 1> text_;
};

/// Whether a name contains a separator or a drive.
bool hasDirectory(const char* name) noexcept;

/// Replaces the components of a slash-separated path by the spelling of existing entries, in place; the
/// length stays the same. Of several entries that differ only in case, the first in byte order is used.
void matchSpelling(char* path) noexcept;

}  // namespace vel::platform
