// Determines the properties of a name from its text alone: style, network server and share, drive, absolute
// or relative. Splitting into directory, base name and extension is filename_base.cpp's work. These rules are
// the same on every system; the file system is never asked.
#include <algorithm>
#include <cstring>

#include "base/ascii.h"
#include "filesys/path_text.h"
#include "vel_include/vel_filesys.h"

namespace {

bool beginsAsNetworkName(const char* text) {
  return text[0] == '\\' && text[1] == '\\';
}

// Returns the position after server and share ("\\\\server\\share"), or the start of a text without them. The
// server has at least one character; a share is what follows the next backslash, even if it is empty.
const char* pathProperOf(const char* text) {
  if (!beginsAsNetworkName(text) || text[2] == '\0') return text;
  const char* share = std::strchr(text + 3, '\\');
  if (share == nullptr) return text;
  const char* path = std::strchr(share + 1, '\\');
  return path != nullptr ? path : share + std::strlen(share);
}

// A drive or a single backslash decides for the backslash style, since neither occurs in ordinary names of
// the slash style.
bool isSlashStyle(const char* path) {
  if (vel::isAsciiLetter(path[0]) && path[1] == ':') return false;
  return std::strchr(path, '\\') == nullptr && std::strchr(path, '/') != nullptr;
}

}  // namespace

VelClPathProperty::VelClPathProperty() : text_(nullptr), path_(nullptr), style_(MSDOS) {}

VelClPathProperty::VelClPathProperty(const char* text) : VelClPathProperty() {
  init(text);
}

void VelClPathProperty::init(const char* text) {
  text_ = vel::textOrEmpty(text);
  path_ = pathProperOf(text_);
  style_ = isSlashStyle(path_) ? UNIX : MSDOS;
}

// `text` is a copy of the other object's text at another address, so only the offset of the path is kept.
void VelClPathProperty::rebase(const VelClPathProperty& other, const char* text) {
  path_ = text + (other.path_ - other.text_);
  style_ = other.style_;
  text_ = text;
}

bool VelClPathProperty::hasDrive() const {
  return path_[0] != '\0' && path_[1] == ':';
}

bool VelClPathProperty::isAbsolute() const {
  if (isUNC()) return true;
  if (isStyleUNIX()) return path_[0] == '/';
  // Intentional: "\\dir" counts as relative, since it depends on the current drive.
  return hasDrive() && path_[2] == '\\';
}

bool VelClPathProperty::isNormalized() const {
  return std::strchr(path_, '/') == nullptr;
}

void VelClPathProperty::normalizePath(char* text) {
  if (text != nullptr) std::replace(text, text + std::strlen(text), '/', '\\');
}

bool VelClPathProperty::matches(const char* a, const char* b) const {
  return isCaseSensitive() ? std::strcmp(a, b) == 0 : vel::equalsIgnoringAsciiCase(a, b);
}
