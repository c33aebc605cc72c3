// Reads and changes texts as paths of a given syntax; VelClPath owns such texts. Nothing here asks the
// system.
#pragma once

#include <cstddef>
#include <string_view>

#include "filesys/path_rules.h"
#include "foundation/allocator.h"
#include "vel_include/vel_path.h"

namespace vel::filesys {

/// What a path begins with:
///
///   \\server\share\dir      C:\dir      C:dir      \dir      /dir
///   ^^^^^^^^^^^^^^          ^^          ^^                              name
///   ^^^^^^^^^^^^^^^         ^^^         ^^         ^         ^          with its separator
struct PathRoot {
  enum class Kind {
    None,               ///< no name; perhaps a separator
    Drive,              ///< "C:"
    Network,            ///< "\\server\share"
    IncompleteNetwork,  ///< two separators without server and share; the whole text counts as the name
    Device,             ///< "\\.\name", also with "/"
    Verbatim            ///< "\\?\name" or "\??\name": what follows is not interpreted
  };

  Kind kind = Kind::None;
  Separators separators = Separators::Slash;  ///< those of the whole path
  bool hasServer = false;                     ///< server and share follow the prefix "\\?\UNC\"
  std::size_t nameLength = 0;
  std::size_t length = 0;  ///< of the name and the separator after it

  bool hasSeparator() const noexcept { return length > nameLength; }
  /// Whether nothing is above: ".." stays here.
  bool isFixed() const noexcept { return hasSeparator() || (kind != Kind::None && kind != Kind::Drive); }
};

/// A text with the syntax in which it is read: PATH_SYNTAX_SLASH or PATH_SYNTAX_BACKSLASH.
struct PathView {
  std::string_view text;
  VelEnPathSyntax syntax;

  bool isSlash() const noexcept { return syntax == PATH_SYNTAX_SLASH; }
};

/// Returns the style that a syntax means for a text.
VelEnPathSyntax resolvedSyntax(VelEnPathSyntax syntax, std::string_view text) noexcept;

PathRoot rootOf(PathView path) noexcept;
bool isAbsolute(PathView path) noexcept;
std::string_view partOf(PathView path, VelEnPathPart part) noexcept;
/// See VelClPath::getComponent.
bool nextComponent(PathView path, std::size_t& position, std::string_view& component) noexcept;
/// Returns the name of a device that a component names on Windows, or "".
std::string_view deviceIn(std::string_view component) noexcept;

/// Compares component by component. `compareNames` compares two components, and the names of the roots.
using NameComparison = int (*)(std::string_view a, std::string_view b) noexcept;
int compareComponents(PathView a, PathView b, NameComparison compareNames) noexcept;
int compareBytes(std::string_view a, std::string_view b) noexcept;
/// Returns how the system compares names of a style.
NameComparison systemComparison(VelEnPathSyntax syntax) noexcept;

/// Return the results of VelClPath's methods.
String appended(PathView path, std::string_view text);
String joined(PathView path, std::string_view text);
String normal(PathView path);
/// Sets `result` to `path` relative to `base`; both are in normal form. Returns false if there is no such
/// path.
bool makeRelative(PathView path, PathView base, NameComparison compareNames, String& result);

}  // namespace vel::filesys
