// Builds changed texts of paths: appended, joined, in normal form, relative. Splitting is path_syntax.cpp's
// work.
#include <algorithm>

#include "filesys/path_syntax.h"

namespace vel::filesys {

namespace {

using Components = Vector<std::string_view>;
using Kind = PathRoot::Kind;

char separatorOf(PathView path) noexcept {
  return path.isSlash() ? '/' : '\\';
}

std::string_view afterRoot(PathView path, const PathRoot& root) noexcept {
  return path.text.substr(root.length);
}

/// Calls `visit` for each component of a text after its root. A root is not looked for: in "C:D:x" the rest
/// "D:x" is a component.
template <typename Visit>
void forEachComponent(std::string_view text, Separators separators, Visit visit) {
  for (std::size_t start = 0; start < text.size();) {
    const std::size_t end = findSeparator(text, start, separators);
    if (end > start) visit(text.substr(start, end - start));
    start = end + 1;
  }
}

/// Adds the components of a text. ".." removes the one before; without one it is dropped below a fixed root,
/// and kept elsewhere.
void addResolved(std::string_view text, Separators separators, bool isFixed, Components& components) {
  forEachComponent(text, separators, [&](std::string_view component) {
    if (component == ".") return;
    const bool leadsUp = component == "..";
    if (leadsUp && !components.empty() && (isFixed || components.back() != ".."))
      components.pop_back();
    else if (!leadsUp || !isFixed)
      components.push_back(component);
  });
}

/// Adds components as they are.
void addPlain(PathView path, const PathRoot& root, Components& components) {
  forEachComponent(afterRoot(path, root), root.separators,
                   [&](std::string_view component) { components.push_back(component); });
}

/// Appends components to a text, with separators between them.
void appendAll(String& text, char separator, Components::const_iterator begin,
               Components::const_iterator end) {
  for (auto component = begin; component != end; ++component) {
    if (component != begin) text += separator;
    text += *component;
  }
}

String rootNameOf(PathView path, const PathRoot& root) {
  String name(path.text.substr(0, root.nameLength));
  if (root.separators == Separators::Both) std::replace(name.begin(), name.end(), '/', '\\');
  return name;
}

/// Whether a component at the start of a path, or after a single separator, would be read as a root.
bool looksLikeRoot(std::string_view component) noexcept {
  return hasDrive(component) || component == "??";
}

/// Returns ".\" if a path would be read as another kind of path without it, because its first component
/// follows other components in the original text: "a\..\C:x" does not begin with a drive, nor "\a\..\??\C:\x"
/// with "\??\".
std::string_view guardOf(PathView path, const PathRoot& root, const Components& components) noexcept {
  const bool needsGuard =
      !path.isSlash() && root.kind == Kind::None && !components.empty() && looksLikeRoot(components.front());
  return needsGuard ? ".\\" : "";
}

/// Returns a path that has a prefix such as "\\?\", continued by a text, whose "." and ".." are resolved.
/// `isRooted`: from the root.
String joinedVerbatim(PathView path, const PathRoot& root, bool isRooted, std::string_view text) {
  Components components;
  if (!isRooted) addPlain(path, root, components);
  addResolved(text, Separators::Both, true, components);
  String result(path.text.substr(0, root.nameLength));
  if (isRooted || root.hasSeparator() || !components.empty()) result += '\\';
  appendAll(result, '\\', components.begin(), components.end());
  return result;
}

/// Whether a text continues in a path of this root, instead of replacing it: it has no name of a root, or the
/// same drive without a separator.
bool continues(const PathRoot& root, std::string_view path, const PathRoot& other, std::string_view text) {
  if (other.kind == Kind::None) return true;
  const bool areDrives = other.kind == Kind::Drive && root.kind == Kind::Drive;
  return areDrives && !other.hasSeparator() && toAsciiUpper(path[0]) == toAsciiUpper(text[0]);
}

}  // namespace

String appended(PathView path, std::string_view text) {
  String result;
  result.reserve(path.text.size() + 1 + text.size());
  result = path.text;
  if (!result.empty() && !isSeparator(result.back(), rootOf(path).separators)) result += separatorOf(path);
  result += text;
  return result;
}

String joined(PathView path, std::string_view text) {
  const PathView other{text, path.syntax};
  const PathRoot root = rootOf(path), otherRoot = rootOf(other);
  const bool isRooted = otherRoot.hasSeparator();
  if (text.empty()) return String(path.text);
  if (path.text.empty() || (path.isSlash() && isRooted)) return String(text);
  if (!continues(root, path.text, otherRoot, text)) return String(text);
  text.remove_prefix(otherRoot.nameLength);
  if (root.kind == Kind::Verbatim) return joinedVerbatim(path, root, isRooted, text);
  // A separator after "C:" would lead to the root instead of the current directory of the drive.
  const bool isBareDrive = root.kind == Kind::Drive && path.text.size() == root.nameLength;
  if (!isRooted && !isBareDrive) return appended(path, text);
  String result(path.text.substr(0, root.nameLength));
  result += text;
  return result;
}

String normal(PathView path) {
  const PathRoot root = rootOf(path);
  if (root.kind == Kind::Verbatim) return String(path.text);
  Components components;
  addResolved(afterRoot(path, root), root.separators, root.isFixed(), components);
  String result;
  result.reserve(path.text.size() + 2);
  result = rootNameOf(path, root);
  if (root.hasSeparator() || root.kind == Kind::Network) result += separatorOf(path);
  result += guardOf(path, root, components);
  appendAll(result, separatorOf(path), components.begin(), components.end());
  if (result.empty()) result = ".";
  return result;
}

namespace {

/// Returns the components of a path in normal form. Those of a path after "\\?\" must mean the same
/// elsewhere: returns false if "." or "/" is in one of them.
bool componentsOf(PathView path, Components& components) {
  const PathRoot root = rootOf(path);
  addPlain(path, root, components);
  const auto isDot = [](std::string_view component) { return component == "."; };
  const auto isSpecial = [&](std::string_view component) {
    return isDot(component) || component == ".." || component.find('/') != std::string_view::npos;
  };
  if (root.kind == Kind::Verbatim) return std::none_of(components.begin(), components.end(), isSpecial);
  components.erase(std::remove_if(components.begin(), components.end(), isDot), components.end());
  return true;
}

}  // namespace

bool makeRelative(PathView path, PathView base, NameComparison compareNames, String& result) {
  const PathView roots[] = {{partOf(path, PATH_PART_ROOT), path.syntax},
                            {partOf(base, PATH_PART_ROOT), base.syntax}};
  if (compareComponents(roots[0], roots[1], compareNames) != 0) return false;
  if (rootOf(path).kind == Kind::IncompleteNetwork) return false;
  Components target, start;
  if (!componentsOf(path, target) || !componentsOf(base, start)) return false;
  const auto [rest, left] =
      std::mismatch(target.cbegin(), target.cend(), start.cbegin(), start.cend(),
                    [&](std::string_view a, std::string_view b) { return compareNames(a, b) == 0; });
  if (std::find(left, start.cend(), "..") != start.cend()) return false;
  Components components(static_cast<std::size_t>(start.cend() - left), "..");
  components.insert(components.end(), rest, target.cend());
  result.clear();
  if (components.empty()) components.push_back(".");
  if (!path.isSlash() && looksLikeRoot(components.front())) result = ".\\";
  appendAll(result, separatorOf(path), components.begin(), components.end());
  return true;
}

}  // namespace vel::filesys
