// Changes a file name part by part. Splitting it is filename_base.cpp's work. Every text passed in may be
// part of the name itself, so a joined name is built in a separate buffer before it replaces the old one.
#include <cstring>

#include "filesys/path_rules.h"
#include "filesys/path_text.h"
#include "vel_include/vel_filesys.h"

using vel::textOrEmpty;
using vel::filesys::PathText;

VelClFilename::VelClFilename() = default;

VelClFilename::VelClFilename(const char* text) : VelClFilenameABase(text) {}

VelClFilename::VelClFilename(const VelClFilenameABase& other) : VelClFilenameABase(other) {}

VelClFilename::VelClFilename(const VelClLocation& location, const char* name, const char* extension)
    : VelClFilenameABase(location.getAsCString(), name, extension) {}

VelClFilename& VelClFilename::operator=(const char* text) {
  init(text);
  return *this;
}

VelClFilename& VelClFilename::operator=(const VelClTmpFilename& other) {
  return *this = static_cast<const VelClFilename&>(other);
}

void VelClFilename::setNew(const char* path, const char* name) {
  init(path, name, nullptr);
}

void VelClFilename::setNew(const VelClLocation& location, const char* name) {
  init(location.getAsCString(), name, nullptr);
}

void VelClFilename::setNewName(const char* name) {
  init(VelClLocation(*this, false).getAsCString(), name, nullptr);
}

void VelClFilename::setNewBaseName(const char* base) {
  init(VelClLocation(*this, false).getAsCString(), base, hasExtension() ? extension_ : nullptr);
}

// Replaces only the text from the old extension on, without splitting the name again: after setting "tar.gz",
// both dots belong to the extension.
void VelClFilename::setNewExtension(const char* extension) {
  const std::string_view text = textOrEmpty(extension);
  PathText<> changed;
  changed.append(name_, static_cast<std::size_t>(extension_ - name_));
  if (!text.empty()) {
    const std::string_view characters = vel::filesys::withoutDot(text);
    changed.append('.');
    changed.append(characters.data(), characters.size());
  }
  length_ = vel::filesys::copyBounded(name_, changed.text(), changed.length());
}

void VelClFilename::setNewPath(const char* path) {
  init(path, base_, nullptr);
}

void VelClFilename::setNewPath(const VelClLocation& location) {
  setNewPath(location.getAsCString());
}

// Keeps the style, which the remaining name alone could not show, and the position of the extension.
void VelClFilename::removePath() {
  if (!hasPath()) return;
  const auto extensionOffset = extension_ - base_;
  length_ = vel::filesys::copyBounded(name_, base_, vel::filesys::kMaxLength);
  const VelClPathProperty style = *this;
  VelClPathProperty::init(name_);
  copyStyle(style);
  base_ = name_;
  extension_ = name_ + extensionOffset;
}

// The parts are not determined again, so the extension begins where it did: that of "a.txt.BAK" is
// ".txt.BAK".
void VelClFilename::appendAfterExtension(const char* text) {
  PathText<> appended;
  appended.append(name_);
  appended.append(text);
  length_ = vel::filesys::copyBounded(name_, appended.text(), appended.length());
}
