// Splits paths: roots, parts, components and their comparison. Changed texts are path_forms.cpp's work.
#include "filesys/path_syntax.h"

#include <algorithm>
#include <array>

#include "platform/path_names.h"

namespace vel::filesys {

namespace {

/// Both prefixes have this length.
constexpr std::size_t kPrefixLength = 4;

bool hasVerbatimPrefix(std::string_view text) noexcept {
  return text.starts_with("\\\\?\\") || text.starts_with("\\??\\");
}

bool equalsIgnoringCase(std::string_view a, std::string_view b) noexcept {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char x, char y) { return toAsciiUpper(x) == toAsciiUpper(y); });
}

/// Whether a network name has "." or "?" as its server, which are prefixes of devices.
bool hasDevicePrefix(std::string_view text, Separators separators) noexcept {
  return (text[2] == '.' || text[2] == '?') && isSeparator(text[3], separators);
}

/// Returns the length of "\\?\UNC\server\share", or 0 for a text without them.
std::size_t lengthOfLongNetworkName(std::string_view text, Separators separators) noexcept {
  constexpr std::size_t kServer = 8;
  if (text.size() < kServer || !isSeparator(text[kServer - 1], separators)) return 0;
  if (!equalsIgnoringCase(text.substr(kPrefixLength, 3), "UNC")) return 0;
  const std::size_t share = findSeparator(text, kServer, separators);
  return share == text.size() ? share : findSeparator(text, share + 1, separators);
}

/// Finds the root of a path with a prefix of four characters: the next component, or server and share.
void findDeviceRoot(std::string_view text, PathRoot::Kind kind, PathRoot& root) noexcept {
  const std::size_t networkLength = lengthOfLongNetworkName(text, root.separators);
  root.kind = kind;
  root.hasServer = networkLength != 0;
  root.nameLength = root.hasServer ? networkLength : findSeparator(text, kPrefixLength, root.separators);
}

void findNetworkRoot(std::string_view text, PathRoot& root) noexcept {
  root.nameLength = lengthOfServerAndShare(text, root.separators);
  root.kind = PathRoot::Kind::Network;
  if (root.nameLength == 0) {
    root.kind = PathRoot::Kind::IncompleteNetwork;
    root.nameLength = text.size();
  } else if (hasDevicePrefix(text, root.separators)) {
    findDeviceRoot(text, PathRoot::Kind::Device, root);
  }
}

void findBackslashRoot(std::string_view text, PathRoot& root) noexcept {
  root.separators = Separators::Both;
  if (hasVerbatimPrefix(text)) {
    root.separators = Separators::Backslash;
    findDeviceRoot(text, PathRoot::Kind::Verbatim, root);
  } else if (beginsAsNetworkName(text, root.separators)) {
    findNetworkRoot(text, root);
  } else if (hasDrive(text) && !isSeparator(text[0], root.separators)) {
    root.kind = PathRoot::Kind::Drive;
    root.nameLength = 2;
  }
}

std::size_t startOfName(PathView path, const PathRoot& root) noexcept {
  return std::max(root.length, startOfLastComponent(path.text, root.separators));
}

std::string_view parentOf(PathView path, const PathRoot& root) noexcept {
  std::size_t end = startOfName(path, root);
  while (end > root.length && isSeparator(path.text[end - 1], root.separators)) --end;
  return path.text.substr(0, end);
}

/// Where the extensions can begin: dots at the start of a name belong to the stem.
std::size_t leadingDots(std::string_view name) noexcept {
  return std::min(name.find_first_not_of('.'), name.size());
}

std::string_view extensionOf(std::string_view name) noexcept {
  const std::string_view rest = name.substr(leadingDots(name));
  return rest.substr(startOfExtension(rest));
}

std::string_view extensionsOf(std::string_view name) noexcept {
  const std::string_view rest = name.substr(leadingDots(name));
  return rest.substr(std::min(rest.find('.'), rest.size()));
}

/// Compares bytes; in backslash style all separators are equal.
int compareRoots(PathView a, PathView b, NameComparison compareNames) noexcept {
  std::string_view rest[] = {partOf(a, PATH_PART_ROOT_NAME), partOf(b, PATH_PART_ROOT_NAME)};
  const PathRoot roots[] = {rootOf(a), rootOf(b)};
  // Piece by piece, because the separators within the names need not be the same characters.
  while (!rest[0].empty() && !rest[1].empty()) {
    std::string_view pieces[2];
    for (int i = 0; i < 2; ++i) {
      const bool isSeparated = isSeparator(rest[i][0], roots[i].separators);
      pieces[i] = rest[i].substr(0, isSeparated ? 1 : findSeparator(rest[i], 0, roots[i].separators));
      rest[i].remove_prefix(pieces[i].size());
      if (isSeparated) pieces[i] = "/";
    }
    if (const int result = compareNames(pieces[0], pieces[1]); result != 0) return result;
  }
  if (rest[0].empty() != rest[1].empty()) return rest[0].empty() ? -1 : 1;
  return int{roots[0].hasSeparator()} - int{roots[1].hasSeparator()};
}

}  // namespace

VelEnPathSyntax resolvedSyntax(VelEnPathSyntax syntax, std::string_view text) noexcept {
  switch (syntax) {
    case PATH_SYNTAX_SLASH:
    case PATH_SYNTAX_BACKSLASH:
      return syntax;
    case PATH_SYNTAX_AS_FILENAME:
      return isSlashStyle(text.substr(lengthOfServerAndShare(text, Separators::Backslash)))
                 ? PATH_SYNTAX_SLASH
                 : PATH_SYNTAX_BACKSLASH;
    default:
      return platform::usesBackslashNames() ? PATH_SYNTAX_BACKSLASH : PATH_SYNTAX_SLASH;
  }
}

PathRoot rootOf(PathView path) noexcept {
  PathRoot root;
  if (!path.isSlash()) findBackslashRoot(path.text, root);
  root.length = root.nameLength;
  if (root.length < path.text.size() && isSeparator(path.text[root.length], root.separators)) ++root.length;
  return root;
}

bool isAbsolute(PathView path) noexcept {
  const PathRoot root = rootOf(path);
  if (root.kind == PathRoot::Kind::IncompleteNetwork) return false;
  if (root.kind != PathRoot::Kind::None && root.kind != PathRoot::Kind::Drive) return true;
  return isAbsolutePath(path.text.substr(0, root.length), path.isSlash(), root.separators);
}

std::string_view partOf(PathView path, VelEnPathPart part) noexcept {
  const PathRoot root = rootOf(path);
  const std::string_view name = path.text.substr(startOfName(path, root));
  switch (part) {
    case PATH_PART_ROOT_NAME:
      return path.text.substr(0, root.nameLength);
    case PATH_PART_ROOT:
      return path.text.substr(0, root.length);
    case PATH_PART_PARENT:
      return parentOf(path, root);
    case PATH_PART_NAME:
      return name;
    case PATH_PART_STEM:
      return name.substr(0, name.size() - extensionOf(name).size());
    case PATH_PART_EXTENSION:
      return extensionOf(name);
    case PATH_PART_EXTENSIONS:
      return extensionsOf(name);
    default:
      return path.text.substr(0, 0);
  }
}

bool nextComponent(PathView path, std::size_t& position, std::string_view& component) noexcept {
  const PathRoot root = rootOf(path);
  std::size_t start = std::min(position, path.text.size());
  if (start < root.length) {
    component = path.text.substr(0, root.length);
    position = root.length;
    return true;
  }
  while (start < path.text.size() && isSeparator(path.text[start], root.separators)) ++start;
  position = findSeparator(path.text, start, root.separators);
  component = path.text.substr(start, position - start);
  return !component.empty();
}

std::string_view deviceIn(std::string_view component) noexcept {
  static constexpr std::array<std::string_view, 6> kNames = {"CON", "PRN", "AUX", "NUL", "CONIN$", "CONOUT$"};
  // Superscript digits count as well: they are digits in the code pages of old versions.
  static constexpr std::array<std::string_view, 3> kSuperscripts = {"\xC2\xB9", "\xC2\xB2", "\xC2\xB3"};
  std::string_view name = component.substr(0, std::min(component.find_first_of(".:"), component.size()));
  name = name.substr(0, name.find_last_not_of(' ') + 1);
  const auto isName = [name](std::string_view device) { return equalsIgnoringCase(name, device); };
  if (std::any_of(kNames.begin(), kNames.end(), isName)) return name;
  const std::string_view port = name.substr(0, 3), digit = name.substr(port.size());
  if (!equalsIgnoringCase(port, "COM") && !equalsIgnoringCase(port, "LPT")) return {};
  const bool isPort = (digit.size() == 1 && digit[0] >= '1' && digit[0] <= '9') ||
                      std::find(kSuperscripts.begin(), kSuperscripts.end(), digit) != kSuperscripts.end();
  return isPort ? name : std::string_view();
}

int compareBytes(std::string_view a, std::string_view b) noexcept {
  return a.compare(b);
}

NameComparison systemComparison(VelEnPathSyntax syntax) noexcept {
  return syntax == PATH_SYNTAX_SLASH ? compareBytes : platform::compareBackslashNames;
}

int compareComponents(PathView a, PathView b, NameComparison compareNames) noexcept {
  if (const int result = compareRoots(a, b, compareNames); result != 0) return result;
  std::size_t positions[] = {rootOf(a).length, rootOf(b).length};
  while (true) {
    std::string_view components[2];
    const bool inA = nextComponent(a, positions[0], components[0]);
    const bool inB = nextComponent(b, positions[1], components[1]);
    if (!inA || !inB) return int{inA} - int{inB};
    if (const int result = compareNames(components[0], components[1]); result != 0) return result;
  }
}

}  // namespace vel::filesys
