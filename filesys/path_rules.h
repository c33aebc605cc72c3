// The rules by which the text of a name is read: style, server and share, drive, the last component and its
// extension. They are the same on every system and for texts of any length; the file system is never asked.
// VelClPathProperty and VelClFilenameABase apply them to names of up to 260 characters, VelClPath to all
// others.
#pragma once

#include <cstddef>
#include <string_view>

#include "base/ascii.h"

namespace vel::filesys {

/// The characters that separate components.
enum class Separators { Slash, Backslash, Both };

constexpr bool isSeparator(char c, Separators separators) noexcept {
  return (c == '\\' && separators != Separators::Slash) || (c == '/' && separators != Separators::Backslash);
}

/// Returns the position of the first separator from `start` on, or the size of the text.
constexpr std::size_t findSeparator(std::string_view text, std::size_t start,
                                    Separators separators) noexcept {
  while (start < text.size() && !isSeparator(text[start], separators)) ++start;
  return start < text.size() ? start : text.size();
}

constexpr bool beginsAsNetworkName(std::string_view text, Separators separators) noexcept {
  return text.size() >= 2 && isSeparator(text[0], separators) && isSeparator(text[1], separators);
}

/// Returns the length of server and share ("\\\\server\\share"), or 0 for a text without them. The server has
/// at least one character; a share is what follows the next separator, even if it is empty.
constexpr std::size_t lengthOfServerAndShare(std::string_view text, Separators separators) noexcept {
  if (!beginsAsNetworkName(text, separators) || text.size() == 2) return 0;
  const std::size_t share = findSeparator(text, 3, separators);
  return share == text.size() ? 0 : findSeparator(text, share + 1, separators);
}

constexpr bool hasDriveLetter(std::string_view path) noexcept {
  return path.size() >= 2 && isAsciiLetter(path[0]) && path[1] == ':';
}

/// Any character can be a drive, but only a letter selects the style.
constexpr bool hasDrive(std::string_view path) noexcept {
  return path.size() >= 2 && path[1] == ':';
}

/// A drive letter or a single backslash decides for the backslash style, since neither occurs in ordinary
/// names of the slash style. `path` has no server and share.
constexpr bool isSlashStyle(std::string_view path) noexcept {
  return !hasDriveLetter(path) && path.find('\\') == std::string_view::npos &&
         path.find('/') != std::string_view::npos;
}

/// Whether a path without server and share is absolute.
/// Intentional: "\\dir" counts as relative, since it depends on the current drive.
constexpr bool isAbsolutePath(std::string_view path, bool isSlashStyle, Separators separators) noexcept {
  if (isSlashStyle) return path.starts_with('/');
  return hasDrive(path) && path.size() >= 3 && isSeparator(path[2], separators);
}

constexpr std::size_t startOfLastComponent(std::string_view path, Separators separators) noexcept {
  std::size_t start = path.size();
  while (start > 0 && !isSeparator(path[start - 1], separators)) --start;
  return start;
}

/// Returns the position of the last "." of a component, or its size.
constexpr std::size_t startOfExtension(std::string_view name) noexcept {
  const std::size_t dot = name.rfind('.');
  return dot == std::string_view::npos ? name.size() : dot;
}

/// Returns an extension without the dot that it may begin with.
constexpr std::string_view withoutDot(std::string_view extension) noexcept {
  return extension.starts_with('.') ? extension.substr(1) : extension;
}

}  // namespace vel::filesys
