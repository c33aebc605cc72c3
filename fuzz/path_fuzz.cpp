// File and directory names, compared with a model on strings that are cut at 260 characters. The input is a
// sequence of steps: an option byte and two NUL-terminated texts.
#include "fuzz/bytes.h"
#include "vel_include/vel_filesys.h"

namespace fuzz::path {

namespace {

constexpr std::size_t kLimit = VEL_MAX_PATH_LENGTH;

std::string cut(const std::string& text, std::size_t limit = kLimit) {
  return text.substr(0, limit);
}

/// Returns the length of server and share at the start of a path.
std::size_t serverLength(const std::string& text) {
  if (text.compare(0, 2, "\\\\") != 0) return 0;
  const std::size_t share = text.find('\\', 3);
  return share == std::string::npos ? 0 : std::min(text.find('\\', share + 1), text.size());
}

char separatorOf(const std::string& text) {
  const std::string path = text.substr(serverLength(text));
  const bool hasDrive =
      path.size() > 1 && path[1] == ':' && ((path[0] | 0x20) >= 'a' && (path[0] | 0x20) <= 'z');
  return !hasDrive && path.find('\\') == std::string::npos && path.find('/') != std::string::npos ? '/'
                                                                                                  : '\\';
}

std::string directory(const std::string& text) {
  std::string name = cut(text);
  if (name.size() == kLimit && name.back() != separatorOf(name)) name = cut(name, kLimit - 1);
  if (!name.empty() && name.back() != separatorOf(name)) name += separatorOf(name);
  return name;
}

std::string joined(const std::string& path, const std::string& name) {
  const std::string front = cut(path);
  const bool isClosed = front.empty() || front.back() == separatorOf(front);
  return cut(front + (isClosed ? "" : std::string(1, separatorOf(front))) + name);
}

std::string withDot(const std::string& extension) {
  return extension[0] == '.' ? extension : "." + extension;
}

struct Parts {
  std::string path, base, extension;
};

Parts split(const std::string& text) {
  const std::size_t server = serverLength(text);
  std::size_t separator = text.rfind('\\');
  if (separator == std::string::npos || separator < server) separator = text.rfind('/');
  const bool hasPath = separator != std::string::npos && separator >= server;
  const std::size_t base = hasPath ? separator + 1 : server;
  const std::size_t dot = text.rfind('.');
  const std::size_t end = dot == std::string::npos || dot < base ? text.size() : dot;
  return {hasPath ? text.substr(0, base) : "", text.substr(base, end - base), text.substr(end)};
}

void requireSplit(const VelClFilename& file) {
  const Parts parts = split(file.getAsCString());
  const std::unique_ptr<char[]> out(new char[kLimit + 1]);
  require({file.getLength() == std::strlen(file.getAsCString()), file.getLength() <= kLimit});
  file.extractPath(out.get(), true);
  require({parts.path == out.get(), file.hasPath() == !parts.path.empty()});
  file.extractPath(out.get(), false);
  require(parts.path.substr(0, parts.path.size() - (parts.path.empty() ? 0 : 1)) == out.get());
  file.extractBaseName(out.get());
  require({parts.base == out.get(), parts.extension == file.getExtension()});
  file.extractServer(out.get());
  require(std::strlen(out.get()) == serverLength(file.getAsCString()));
  // NOLINTNEXTLINE(performance-unnecessary-copy-initialization): the copy is tested
  const VelClFilename copy = file;
  require({copy == file, file.matchesPath(copy), file.matchesBase(copy),
           file.matchesExtension(file.getExtension()), file.matchesWildcardPattern("*"),
           file.getPathSep() == separatorOf(file.getAsCString()),
           !file.isStyleFAT_8_3() || parts.extension.size() <= 4});
}

/// Changes a part of the name, and returns the expected name.
std::string change(VelClFilename& file, unsigned int kind, const char* text, const char* other) {
  const std::string before = file.getAsCString();
  const Parts parts = split(before);
  const std::string path =
      directory(before.substr(0, before.size() - parts.base.size() - parts.extension.size()));
  const std::string extension = *text == '\0' ? "" : withDot(text);
  switch (kind) {
    case 0:
      file.setNew(text, other);
      return joined(text, other);
    case 1:
      file.setNewName(text);
      return joined(path, text);
    case 2:
      file.setNewBaseName(text);
      return joined(path, text + parts.extension);
    case 3:
      file.setNewExtension(text);
      return cut(before.substr(0, before.size() - parts.extension.size()) + extension);
    case 4:
      file.setNewPath(VelClLocation(text, false));
      return joined(directory(text), parts.base + parts.extension);
    case 5:
      file.removePath();
      return file.hasPath() || parts.path.empty() ? before : parts.base + parts.extension;
    case 6:
      file = VelClFilename(VelClLocation(text, false), other, text);
      return joined(directory(text), other + withDot(text));
    default:
      file = text;
      return cut(text);
  }
}

void requireTextOf(const std::string& text) {
  const VelClLocation location(text.c_str(), false);
  VelClLocation normalized(location);
  normalized.normalize();
  require({cut(text) == VelClFilename(text.c_str()).getAsCString(),
           directory(text) == location.getAsCString(), location.getLength() == directory(text).size(),
           normalized.isNormalized(), normalized.getLength() == location.getLength(),
           !location.isRoot() || location.isAbsolute()});
}

/// Returns "" if ".." leads above the root or if the result is too long.
std::string expanded(const std::string& path, const std::string& current) {
  const VelClPathProperty property(path.c_str());
  std::string root = path.substr(0, property.isUNC() ? serverLength(path) : property.hasDrive() ? 2 : 0);
  std::string rest =
      property.isAbsolute() ? path.substr(std::min(root.size() + 1, path.size())) : current.substr(3) + path;
  if (property.isRelative()) root = current.substr(0, 2);
  std::vector<std::string> components;
  for (std::size_t end = 0; (end = rest.find('\\')) != std::string::npos; rest.erase(0, end + 1)) {
    const std::string component = rest.substr(0, end);
    if (component.size() > 1 && component.ends_with("..")) {
      if (components.empty()) return "";
      components.pop_back();
    } else if (!component.ends_with('.')) {
      components.push_back(component);
    }
  }
  for (const std::string& component : components) root += '\\' + component;
  return root.size() < kLimit ? root + '\\' : "";
}

void requireExpanded(const std::string& text, const std::string& current) {
  const std::unique_ptr<char[]> path(new char[kLimit + 1]);
  // Bytes after the NUL must not be used.
  std::memset(path.get(), '\\', kLimit + 1);
  std::memcpy(path.get(), text.c_str(), text.size() + 1);
  const std::string expected = expanded(text, current);
  require({VelClFileABase::expandRelativePath(path.get()) == !expected.empty(), expected == path.get()});
}

void run(Bytes input) {
  static char current[kLimit + 1] = ".\\";
  static const bool isKnown = VelClFileABase::expandRelativePath(current);
  require(isKnown);
  VelClFilename file;
  while (!input.atEnd()) {
    const unsigned int option = input.byte();
    // A fuzzer seldom makes texts near the limit, so the option can prepend up to 260 characters.
    const Text text(std::string((option & 8) != 0 ? 230 + (option >> 4) * 2 : 0, 'x') + input.text().data());
    const std::string expected = change(file, option & 7, text, input.text());
    require(expected == file.getAsCString());
    if ((option & 7) != 3 && (option & 7) != 5) requireSplit(file);
    file = expected.c_str();
    requireSplit(file);
    requireTextOf(text.data());
    requireExpanded(cut(text.data()), current);
  }
}

const Target target("path", run);

}  // namespace

}  // namespace fuzz::path
