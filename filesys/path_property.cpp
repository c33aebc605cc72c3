// Determines the properties of a name from its text alone: style, network server and share, drive, absolute
// or relative, by the rules of path_rules.h. Splitting into directory, base name and extension is
// filename_base.cpp's work.
#include <algorithm>
#include <cstring>

#include "base/short_text.h"
#include "filesys/path_rules.h"
#include "vel_include/vel_filesys.h"

using vel::filesys::Separators;

namespace {

/// As many characters of a path as its drive and the separator after it can have.
std::string_view headOf(const char* path) {
  return {path, vel::boundedLength(path, 3)};
}

}  // namespace

VelClPathProperty::VelClPathProperty() : text_(nullptr), path_(nullptr), style_(MSDOS) {}

VelClPathProperty::VelClPathProperty(const char* text) : VelClPathProperty() {
  init(text);
}

void VelClPathProperty::init(const char* text) {
  text_ = vel::textOrEmpty(text);
  const std::string_view whole = text_;
  const std::size_t server = vel::filesys::lengthOfServerAndShare(whole, Separators::Backslash);
  path_ = text_ + server;
  style_ = vel::filesys::isSlashStyle(whole.substr(server)) ? UNIX : MSDOS;
}

// `text` is a copy of the other object's text at another address, so only the offset of the path is kept.
void VelClPathProperty::rebase(const VelClPathProperty& other, const char* text) {
  path_ = text + (other.path_ - other.text_);
  style_ = other.style_;
  text_ = text;
}

bool VelClPathProperty::hasDrive() const {
  return vel::filesys::hasDrive(headOf(path_));
}

bool VelClPathProperty::isAbsolute() const {
  return isUNC() || vel::filesys::isAbsolutePath(headOf(path_), isStyleUNIX(), Separators::Backslash);
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
