// File names as the system takes them.
// A name is in back-slash style when it begins with a drive, holds a back-slash, or has no separator
// at all; any other name with a "/" is in slash style and passes untouched. A back-slash name loses its
// drive, and "\\" becomes "/". When there is no entry of exactly that name, each component
// that does not exist as written is looked for in its directory ignoring ASCII letter case.
#pragma once

#include <array>
#include <cstddef>

namespace vel::platform {

class NativePath {
 public:
  /// Which components take the spelling of existing entries. A component without an entry stays as
  /// it was typed.
  enum class Match { All, AllButLast };

  /// `name` outlives the object.
  explicit NativePath(const char* name, Match match = Match::All) noexcept;
  NativePath(const NativePath&) = delete;
  NativePath& operator=(const NativePath&) = delete;

  /// False for a back-slash name above 260 characters, which is never cut: no entry has it.
  bool fits() const noexcept { return path_ != nullptr; }
  const char* get() const noexcept { return path_; }

 private:
  static constexpr std::size_t kMaxLength = 260;

  const char* path_;
  std::array<char, kMaxLength + 1> text_;
};

/// Whether a name says where its entry is: it holds a separator or a drive.
bool hasDirectory(const char* name) noexcept;

/// Gives the components of a slash-separated path the spelling of existing entries, in place; the
/// length stays. Of several entries that differ in letter case only, the first in byte order is taken.
void matchSpelling(char* path) noexcept;

}  // namespace vel::platform
