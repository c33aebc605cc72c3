// What depends on the system: absolute paths, the other syntax, and VelClFilename's texts.
#include <algorithm>
#include <cerrno>

#include "filesys/path_content.h"
#include "filesys/path_text.h"
#include "foundation/status.h"
#include "platform/files.h"
#include "platform/path_names.h"

namespace filesys = vel::filesys;
namespace platform = vel::platform;
using filesys::PathRoot;
using filesys::PathView;
using vel::String;

namespace {

VelClStatus invalid(std::string_view text, std::size_t position = 0) {
  return {PATH_INVALID, VelEnErrorClass::IO_INVALID_NAME, 0, text, position};
}

/// The syntax in which the file functions read a name of VelClFilename outside of Windows: a backslash
/// anywhere, also in the server, makes it a backslash name.
VelEnPathSyntax syntaxOfFileName(std::string_view text) noexcept {
  return filesys::isSlashStyle(text) ? PATH_SYNTAX_SLASH : PATH_SYNTAX_BACKSLASH;
}

/// Returns the part of a backslash path that slash style can express, or false for the name of a device.
/// After "\\?\" only components without "/" can be expressed.
bool expressible(std::string_view text, const PathRoot& root, std::string_view& rest) noexcept {
  rest = text;
  if (root.kind == PathRoot::Kind::Device) return false;
  if (root.kind != PathRoot::Kind::Verbatim) {
    if (filesys::hasDriveLetter(rest)) rest.remove_prefix(2);
    return true;
  }
  constexpr std::size_t kPrefix = 4, kLongPrefix = 7, kDriveEnd = kPrefix + 2;
  if (!root.hasServer && (root.nameLength != kDriveEnd || !filesys::hasDriveLetter(text.substr(kPrefix))))
    return false;
  rest.remove_prefix(root.hasServer ? kLongPrefix : kDriveEnd);
  return rest.find('/') == std::string_view::npos;
}

bool convertToSlash(PathView path, String& converted) {
  std::string_view rest;
  if (!expressible(path.text, filesys::rootOf(path), rest)) return false;
  converted = rest;
  std::replace(converted.begin(), converted.end(), '\\', '/');
  // A bare drive means its current directory.
  if (converted.empty() && !path.text.empty()) converted = ".";
  return true;
}

bool convertToBackslash(PathView path, String& converted) {
  if (path.text.find('\\') != std::string_view::npos) return false;
  // Two separators at the start would begin the name of a server.
  const std::size_t slashes = std::min(path.text.find_first_not_of('/'), path.text.size());
  converted = path.text.substr(slashes > 1 ? slashes - 1 : 0);
  std::replace(converted.begin(), converted.end(), '/', '\\');
  return filesys::rootOf({converted, PATH_SYNTAX_BACKSLASH}).kind == PathRoot::Kind::None;
}

/// Returns the text in which VelClFilename sees the same file, or false if there is none.
bool makeTextForFilename(PathView path, String& text) {
  text = path.text;
  if (syntaxOfFileName(text) == PATH_SYNTAX_SLASH) return true;
  if (path.isSlash()) return text.find('\\') == String::npos && !filesys::hasDriveLetter(text);
  const PathRoot::Kind kind = filesys::rootOf(path).kind;
  if (kind == PathRoot::Kind::Verbatim) return true;
  // Beside a backslash, "/" would be an ordinary character.
  std::replace(text.begin(), text.end(), '/', '\\');
  return filesys::rootOf({text, path.syntax}).kind == kind;
}

/// Sets `text` to the current directory, or that of a drive, in the system's style.
platform::NativeError getWorkingDirectory(std::string_view drive, String& text) {
  std::size_t size = 256;
  platform::NativeError error = 0;
  do {
    text.resize(size);
    error = platform::workingDirectory(drive.empty() ? '\0' : drive[0], text.data(), text.size(), size);
  } while (error == 0 && size > text.size());
  text.resize(error == 0 ? size : 0);
  return error;
}

/// Sets `directory` to the directory from which `path` starts, in the syntax of the path.
VelClStatus findWorkingDirectory(PathView path, VelClPath& directory) {
  const PathRoot root = filesys::rootOf(path);
  if (root.kind == PathRoot::Kind::IncompleteNetwork) return invalid(path.text);
  const std::string_view drive = path.text.substr(0, root.nameLength);
  String text;
  const platform::NativeError error = getWorkingDirectory(drive, text);
  if (error != 0) return vel::systemFailure(PATH_INVALID, error, path.text);
  directory = VelClPath(text);
  if (directory.getSyntax() == path.syntax) return {};
  if (path.isSlash()) return invalid(path.text);
  VelClStatus status = directory.convertTo(PATH_SYNTAX_BACKSLASH);
  if (!status.isOk()) return status;
  String withDrive(drive.empty() ? platform::driveOfSlashNames() : drive);
  withDrive += directory.getText();
  directory = VelClPath(withDrive, PATH_SYNTAX_BACKSLASH);
  return {};
}

}  // namespace

VelClStatus VelClPath::check() const {
  const std::string_view text = getText();
  const std::size_t unusable = platform::findUnusableByte(text);
  return text.empty() || unusable < text.size() ? invalid(text, unusable + 1) : VelClStatus();
}

VelClStatus VelClPath::convertTo(VelEnPathSyntax syntax) {
  const VelEnPathSyntax wanted = filesys::resolvedSyntax(syntax, getText());
  const PathView view = Content::viewOf(*this);
  if (wanted == view.syntax) return {};
  String converted;
  const bool isPossible =
      wanted == PATH_SYNTAX_SLASH ? convertToSlash(view, converted) : convertToBackslash(view, converted);
  if (!isPossible) return invalid(view.text);
  Content::replace(*this, std::move(converted), wanted);
  return {};
}

VelClStatus VelClPath::makeAbsolute(const VelClPath& base) {
  VelClStatus status = check();
  if (!status.isOk() || isAbsolute()) return status;
  const bool isIncomplete = filesys::rootOf(Content::viewOf(*this)).kind == PathRoot::Kind::IncompleteNetwork;
  if (isIncomplete || base.getSyntax() != getSyntax() || !base.isAbsolute()) return invalid(getText());
  VelClPath joined = base / getText();
  if (!joined.isAbsolute()) return invalid(getText());
  *this = std::move(joined);
  return {};
}

VelClStatus VelClPath::makeAbsolute() {
  VelClStatus status = check();
  if (!status.isOk() || isAbsolute()) return status;
  if (isReserved() && getText().find_first_of("/\\.") == std::string_view::npos) {
    *this = VelClPath("\\\\.\\", getSyntax()).append(filesys::deviceIn(getName()));
    return {};
  }
  VelClPath directory;
  status = findWorkingDirectory(Content::viewOf(*this), directory);
  return status.isOk() ? makeAbsolute(directory) : status;
}

VelClStatus VelClPath::toFilename(VelClFilename& name) const {
  VelClPath converted(*this);
  VelClStatus status = converted.check();
  // Backslash style is VelClFilename's own on every system.
  if (status.isOk() && platform::usesBackslashNames()) status = converted.convertTo(PATH_SYNTAX_SYSTEM);
  if (!status.isOk()) return status;
  const PathView view = Content::viewOf(converted);
  String text;
  if (!makeTextForFilename(view, text)) return invalid(view.text);
  char narrow[filesys::kMaxLength + 1];
  std::size_t size = 0;
  const platform::SystemError error = platform::narrowName(text, narrow, filesys::kMaxLength, size);
  if (error == ERANGE) return {PATH_TOO_LONG, VelEnErrorClass::IO_INVALID_NAME, 0, getText()};
  if (error != 0) return invalid(getText());
  narrow[size] = '\0';
  name = narrow;
  return {};
}

VelClStatus VelClPath::fromFilename(const VelClPathProperty& name, VelClPath& path) {
  const std::string_view narrow = name.getAsCString();
  String text;
  // No character has more bytes in UTF-8 than this for each byte of another encoding.
  text.resize(narrow.size() * 4);
  std::size_t size = 0;
  const platform::SystemError error = platform::utf8Name(narrow, text.data(), text.size(), size);
  if (error != 0) return invalid(narrow);
  text.resize(size);
  VelClPath converted(text, platform::usesBackslashNames() ? PATH_SYNTAX_BACKSLASH : syntaxOfFileName(text));
  VelClStatus status = converted.convertTo(PATH_SYNTAX_SYSTEM);
  if (status.isOk()) path = std::move(converted);
  return status;
}
