// Splits a file name into its parts, joins, compares and copies them. Changing single parts is filename.cpp's
// work; style, server and drive are found by path_property.cpp.
//
// The parts are pointers into one buffer:
//
//   \\server\share\dir\name.ext
//   ^name_        ^path^base_
//                          ^extension_; without an extension it points to the NUL
#include <algorithm>
#include <cstring>

#include "base/ascii.h"
#include "filesys/path_rules.h"
#include "filesys/path_text.h"
#include "platform/files.h"
#include "vel_include/vel_filesys.h"
#include "vel_include/vel_util.h"

using vel::textOrEmpty;
using vel::filesys::kMaxLength;
using vel::filesys::PathText;

namespace {

// Intentional: one backslash makes every "/" an ordinary character, as the name is then in backslash style.
vel::filesys::Separators separatorsOf(std::string_view path) {
  using vel::filesys::Separators;
  return path.find('\\') != std::string_view::npos ? Separators::Backslash : Separators::Slash;
}

// Case is folded in ASCII only, so that the result does not depend on the process's locale. A NUL in only one
// of the texts is a difference, which ends the loop before it reads past it.
bool matchesPrefix(const char* a, const char* b, std::size_t length, bool caseSensitive) {
  for (std::size_t i = 0; i < length; ++i) {
    const bool equal = caseSensitive ? a[i] == b[i] : vel::toAsciiUpper(a[i]) == vel::toAsciiUpper(b[i]);
    if (!equal) return false;
  }
  return true;
}

void copyPart(char* out, const char* begin, const char* end) {
  vel::filesys::copyBounded(out, begin, static_cast<std::size_t>(end - begin));
}

// Whether every component before the extension has the 8.3 form.
// Intentional: the characters of the extension are not checked and do not change the result.
bool hasFat83Components(const char* begin, const char* end) {
  int count = 0;
  for (const char* c = begin; c < end; ++c) {
    if (count > 8 || std::strchr("<>:;.\"|/*", *c) != nullptr) return false;
    count = *c == '\\' ? 0 : count + 1;
  }
  return true;
}

}  // namespace

VelClFilenameABase::VelClFilenameABase() : VelClFilenameABase("") {}

VelClFilenameABase::VelClFilenameABase(const char* text) : VelClFilenameABase(text, kMaxLength) {}

VelClFilenameABase::VelClFilenameABase(const char* text, size_t length)
    : name_{}, base_(name_), extension_(name_), length_(0) {
  init(text, length);
}

VelClFilenameABase::VelClFilenameABase(const char* path, const char* name, const char* extension)
    : name_{}, base_(name_), extension_(name_), length_(0) {
  init(path, name, extension);
}

VelClFilenameABase::VelClFilenameABase(const VelClFilenameABase& other) : VelClPathProperty(other), name_{} {
  copyFrom(other);
}

VelClFilenameABase& VelClFilenameABase::operator=(const VelClFilenameABase& other) {
  if (this != &other) copyFrom(other);
  return *this;
}

// Copies the text and rebases all pointers to this object's buffer.
void VelClFilenameABase::copyFrom(const VelClFilenameABase& other) {
  std::memcpy(name_, other.name_, sizeof name_);
  rebase(other, name_);
  base_ = name_ + (other.base_ - other.name_);
  extension_ = name_ + (other.extension_ - other.name_);
  length_ = other.length_;
}

void VelClFilenameABase::init(const char* text) {
  init(text, kMaxLength);
}

void VelClFilenameABase::init(const char* text, size_t length) {
  length_ = vel::filesys::copyBounded(name_, text, length);
  VelClPathProperty::init(name_);
  determineParts();
}

void VelClFilenameABase::init(const char* path, const char* name, const char* extension) {
  PathText<> joined;
  joined.append(textOrEmpty(path));
  // The directory alone decides the separator; the name's style does not count.
  const char separator = VelClPathProperty(joined.text()).getPathSep();
  if (joined.length() != 0 && joined.last() != separator) joined.append(separator);
  joined.append(textOrEmpty(name));
  if (extension != nullptr) {
    if (*extension != '.') joined.append('.');
    joined.append(extension);
  }
  init(joined.text());
}

void VelClFilenameABase::determineParts() {
  const std::string_view path = getPtrToPath();
  const std::size_t start = vel::filesys::startOfLastComponent(path, separatorsOf(path));
  base_ = name_ + (path.data() - name_) + start;
  extension_ = base_ + vel::filesys::startOfExtension(path.substr(start));
}

bool VelClFilenameABase::operator==(const VelClFilenameABase& other) const {
  return matches(name_, other.name_);
}

bool VelClFilenameABase::matchesPath(const VelClFilenameABase& other) const {
  return matchesPrefix(getPtrToPath(), other.getPtrToPath(), static_cast<std::size_t>(base_ - getPtrToPath()),
                       isCaseSensitive());
}

// Compares over the longer length, so that a base name that is only a prefix of the other one differs: the
// shorter one's dot or NUL is compared as well.
bool VelClFilenameABase::matchesBase(const VelClFilenameABase& other) const {
  const auto length = std::max(extension_ - base_, other.extension_ - other.base_);
  return matchesPrefix(base_, other.base_, static_cast<std::size_t>(length), isCaseSensitive());
}

bool VelClFilenameABase::matchesExtension(const char* extension) const {
  extension = textOrEmpty(extension);
  return matches(hasExtension() && *extension != '.' ? extension_ + 1 : extension_, extension);
}

bool VelClFilenameABase::matchesWildcardPattern(const char* pattern) const {
  return velMatchesWildcardPattern(pattern, base_, isCaseSensitive());
}

void VelClFilenameABase::extractPath(char* out, bool withSeparator) const {
  const char* end = withSeparator ? base_ : base_ - 1;
  copyPart(out, name_, hasPath() ? end : name_);
}

void VelClFilenameABase::extractBaseName(char* out) const {
  copyPart(out, base_, extension_);
}

void VelClFilenameABase::extractServer(char* out) const {
  copyPart(out, name_, getPtrToPath());
}

bool VelClFilenameABase::isStyleFAT_8_3() const {
  if (!isStyleMSDOS()) return false;
  if (std::strlen(extension_) > 4 || extension_ - base_ > 8) return false;
  const char* path = getPtrToPath();
  if (!hasDrive()) return hasFat83Components(path, extension_);
  return vel::isAsciiLetter(*path) && hasFat83Components(path + 2, extension_);
}

bool VelClFilenameABase::isExistent() const {
  return vel::platform::entryExists(name_);
}
