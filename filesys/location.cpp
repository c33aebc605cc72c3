// Implements the name of a directory, which always ends with a separator unless it is empty, so that an
// entry's name can be appended directly. Operations on directories are in directory.cpp.
#include <cstring>

#include "filesys/path_text.h"
#include "platform/files.h"
#include "vel_include/vel_filesys.h"

using vel::filesys::kMaxLength;

VelClLocation::VelClLocation(const char* text, bool normalize) : VelClLocation(text, kMaxLength, normalize) {}

VelClLocation::VelClLocation(const void* text, size_t length, bool normalize) : directory_{}, length_(0) {
  copyText(static_cast<const char*>(text), length);
  init(normalize);
}

VelClLocation::VelClLocation(const VelClFilenameABase& file, bool normalize)
    : VelClLocation(file.getAsCString(), static_cast<size_t>(file.getName() - file.getAsCString()),
                    normalize) {}

VelClLocation::VelClLocation(const VelClLocation& other)
    : VelClPathProperty(other), directory_{}, length_(0) {
  *this = other;
}

VelClLocation& VelClLocation::operator=(const char* text) {
  copyText(text, kMaxLength);
  init(false);
  return *this;
}

// Rebases instead of determining the properties again, which would turn a normalized "//server/share" into a
// network name.
VelClLocation& VelClLocation::operator=(const VelClLocation& other) {
  if (this == &other) return *this;
  copyText(other.directory_, other.length_);
  rebase(other, directory_);
  return *this;
}

void VelClLocation::copyText(const char* text, size_t length) {
  length_ = static_cast<uint32_t>(vel::filesys::copyBounded(directory_, text, length));
}

void VelClLocation::init(bool normalize) {
  copyText(directory_, kMaxLength);
  VelClPathProperty::init(directory_);
  // Intentional: the separator is chosen before normalizing; for "C:/a/" callers get a name that ends with
  // two backslashes.
  endWithSeparator();
  if (normalize) this->normalize();
}

void VelClLocation::endWithSeparator() {
  // A name of the full length gives up its last character for the separator. In a name of only server and
  // share the path begins at the end of the text, so the properties are determined again.
  if (length_ == kMaxLength && directory_[length_ - 1] != getPathSep()) {
    copyText(directory_, kMaxLength - 1);
    VelClPathProperty::init(directory_);
  }
  if (length_ == 0 || directory_[length_ - 1] == getPathSep()) return;
  directory_[length_] = getPathSep();
  directory_[++length_] = '\0';
}

void VelClLocation::normalize() {
  normalizePath(getNonConstPtrToPath());
  // Intentional: only the style is determined again. "//server/share" does not become a network name, since
  // the caller wrote a path in slash style.
  copyStyle(VelClPathProperty(getPtrToPath()));
}

bool VelClLocation::isRoot() const {
  if (!isAbsolute()) return false;
  if (isUNC()) return std::strlen(getPtrToPath()) == 1;
  return length_ == (hasDrive() ? 3U : 1U);
}

bool VelClLocation::isExistent() const {
  return vel::platform::entryExists(directory_);
}
