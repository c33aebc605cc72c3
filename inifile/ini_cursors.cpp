// Cursors over sections and options. Each cursor's place is in a list of the model, from its construction to
// its destruction. When a record or the file is deleted, the model visits that list and invalidates the
// places that point to it: so a cursor never points to freed memory. Moving a cursor does not touch the list.
#include "base/ascii.h"
#include "inifile/model.h"
#include "inifile/value_characters.h"
#include "vel_include/vel_inifile.h"

using vel::equalsIgnoringAsciiCase;
using vel::inifile::Model;

namespace vel::inifile {

CursorPlace::CursorPlace(const VelClIniFile& file, VelClIniFileSection* section)
    : file_(&file), section_(section), option_(nullptr) {
  attach();
}

CursorPlace::CursorPlace(const CursorPlace& other)
    : file_(other.file_), section_(other.section_), option_(other.option_) {
  attach();
}

CursorPlace& CursorPlace::operator=(const CursorPlace& other) {
  if (this == &other) return *this;
  detach();
  file_ = other.file_;
  section_ = other.section_;
  option_ = other.option_;
  attach();
  return *this;
}

CursorPlace::~CursorPlace() {
  detach();
}

void CursorPlace::attach() {
  if (file_ != nullptr) Model::of(*file_).add(*this);
}

void CursorPlace::detach() {
  if (file_ != nullptr) Model::of(*file_).remove(*this);
}

}  // namespace vel::inifile

VelClIniFileSectionCursor::VelClIniFileSectionCursor(const VelClIniFile& file) : place_(file, nullptr) {}

VelClIniFileSectionCursor::VelClIniFileSectionCursor(const VelClIniFileSectionCursor& other) = default;

VelClIniFileSectionCursor& VelClIniFileSectionCursor::operator=(const VelClIniFileSectionCursor& other) =
    default;

VelClIniFileSectionCursor::~VelClIniFileSectionCursor() = default;

bool VelClIniFileSectionCursor::isValid() const {
  return place_.section() != nullptr;
}

bool VelClIniFileSectionCursor::setToFirst() {
  if (place_.file() != nullptr) place_.setSection(Model::of(*place_.file()).firstSection());
  return isValid();
}

bool VelClIniFileSectionCursor::setToNext() {
  if (isValid()) place_.setSection(place_.section()->getNext());
  return isValid();
}

// Intentional: a cursor that is on a section of this name stays there, even if that is not the first one, so
// a program can test and move in one call during a walk.
bool VelClIniFileSectionCursor::setTo(const char* name) {
  if (!matches(name) && place_.file() != nullptr)
    place_.setSection(Model::of(*place_.file()).findSection(name));
  return isValid();
}

bool VelClIniFileSectionCursor::matches(const char* name) const {
  return isValid() && name != nullptr && equalsIgnoringAsciiCase(place_.section()->getName(), name);
}

const char* VelClIniFileSectionCursor::getSection() const {
  return isValid() ? place_.section()->getName() : "";
}

VelClIniFileOptionCursor::VelClIniFileOptionCursor(const VelClIniFile& file,
                                                   const VelClIniFileSection& section)
    // The place has pointers as the model returns them, not const; a cursor only reads through them.
    : place_(file, const_cast<VelClIniFileSection*>(&section)) {}

VelClIniFileOptionCursor::VelClIniFileOptionCursor(const VelClIniFile& file, const char* section)
    : place_(file, file.getExistingSection(section)) {}

VelClIniFileOptionCursor::VelClIniFileOptionCursor(const VelClIniFileSectionCursor& section)
    : place_(section.place_) {}

VelClIniFileOptionCursor::VelClIniFileOptionCursor(const VelClIniFileOptionCursor& other) = default;

VelClIniFileOptionCursor& VelClIniFileOptionCursor::operator=(const VelClIniFileOptionCursor& other) =
    default;

VelClIniFileOptionCursor::~VelClIniFileOptionCursor() = default;

bool VelClIniFileOptionCursor::isValid() const {
  return place_.option() != nullptr;
}

bool VelClIniFileOptionCursor::setToFirst() {
  if (place_.section() != nullptr) place_.setOption(place_.section()->getFirstOption());
  return isValid();
}

bool VelClIniFileOptionCursor::setToNext() {
  if (isValid()) place_.setOption(place_.option()->getNext());
  return isValid();
}

// Intentional: stays on an option of this name, as setTo of the other cursor does.
bool VelClIniFileOptionCursor::setTo(const char* name) {
  if (!matches(name) && place_.section() != nullptr)
    place_.setOption(Model::of(*place_.file()).findOption(*place_.section(), name));
  return isValid();
}

bool VelClIniFileOptionCursor::matches(const char* name) const {
  return isValid() && name != nullptr && equalsIgnoringAsciiCase(place_.option()->getName(), name);
}

const char* VelClIniFileOptionCursor::getOption() const {
  return isValid() ? place_.option()->getName() : "";
}

const char* VelClIniFileOptionCursor::getValue() const {
  return isValid() ? place_.option()->getValue() : "";
}

// An invalid cursor leaves the output untouched, so that callers can set a default before.
bool VelClIniFileOptionCursor::getValue(const char*& value) const {
  if (isValid()) vel::inifile::convert(getValue(), value);
  return isValid();
}

bool VelClIniFileOptionCursor::getValue(int& value) const {
  if (isValid()) vel::inifile::convert(getValue(), value);
  return isValid();
}

bool VelClIniFileOptionCursor::getValue(long& value) const {
  if (isValid()) vel::inifile::convert(getValue(), value);
  return isValid();
}

bool VelClIniFileOptionCursor::getValue(unsigned int& value) const {
  if (isValid()) vel::inifile::convert(getValue(), value);
  return isValid();
}

bool VelClIniFileOptionCursor::getValue(unsigned long& value) const {
  if (isValid()) vel::inifile::convert(getValue(), value);
  return isValid();
}

bool VelClIniFileOptionCursor::getValue(char& value) const {
  if (isValid()) vel::inifile::convert(getValue(), value);
  return isValid();
}

bool VelClIniFileOptionCursor::getValueBool() const {
  bool value = false;
  if (isValid()) vel::inifile::convert(getValue(), value);
  return value;
}

const char* VelClIniFileOptionCursor::getComment() const {
  return isValid() ? place_.option()->getComment() : "";
}
