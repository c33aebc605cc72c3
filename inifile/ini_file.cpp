// The loads and queries of VelClIniFile. Parsing is ini_parser.cpp's work, finding records model.cpp's,
// changing them ini_file_mutators.cpp's, and converting values value_characters.cpp's.
#include "foundation/allocator.h"
#include "inifile/ini_parser.h"
#include "inifile/line_source.h"
#include "inifile/model.h"
#include "inifile/value_characters.h"
#include "vel_include/vel_inifile.h"

using vel::inifile::LineSource;
using vel::inifile::Model;

VelClIniFile::VelClIniFile(const VelClFilenameABase& name)
    : VelClFile(name, ".INI"),
      firstSection_(nullptr),
      lastSection_(nullptr),
      lineCount_(0),
      currentSection_(nullptr),
      errorHandler_(nullptr),
      errorHandlerData_(nullptr),
      model_(vel::create<Model>(*this)) {}

VelClIniFile::~VelClIniFile() {
  vel::destroy(model_);
}

void VelClIniFile::setErrorHandler(VelIniFileErrorHandler handler, void* userData) {
  errorHandler_ = handler;
  errorHandlerData_ = userData;
}

bool VelClIniFile::load(bool allowContinuation) {
  // Only this load restarts the line count, even if the file cannot be opened; loadFromBuffer continues it.
  lineCount_ = 0;
  LineSource lines(getAsCString());
  return lines.isOpen() && parse(lines, true, allowContinuation);
}

bool VelClIniFile::loadFromBuffer(const char* buffer, size_t size, char delimiter, bool keepDuplicateSections,
                                  bool allowContinuation) {
  LineSource lines(buffer, buffer != nullptr ? size : 0, delimiter);
  return parse(lines, keepDuplicateSections, allowContinuation);
}

bool VelClIniFile::parse(LineSource& lines, bool keepDuplicateSections, bool allowContinuation) {
  return vel::inifile::Parser(*this, keepDuplicateSections, allowContinuation).parse(lines);
}

bool VelClIniFile::getSection(const char* name) const {
  // Intentional: a section that is not found leaves no current section, so that the options of another one
  // are not taken for its own.
  currentSection_ = getExistingSection(name);
  return currentSection_ != nullptr;
}

VelClIniFileSection* VelClIniFile::getExistingSection(const char* name) const {
  return model_->findSection(name);
}

const VelClIniFileOption* VelClIniFile::getExistingOption(const VelClIniFileSection& section,
                                                          const char* name) const {
  return model_->findOption(section, name);
}

/// Serves all overloads of getOption. Both outputs are untouched when the option is not found, so that a
/// caller can set defaults before.
template <typename Value>
bool VelClIniFile::queryOption(const char* name, Value& value, const char** comment) const {
  const VelClIniFileOption* option =
      currentSection_ != nullptr ? model_->findOption(*currentSection_, name) : nullptr;
  if (option == nullptr) return false;
  vel::inifile::convert(option->getValue(), value);
  if (comment != nullptr) *comment = option->getComment();
  return true;
}

bool VelClIniFile::getOption(const char* name, const char*& value) const {
  return queryOption(name, value, nullptr);
}
bool VelClIniFile::getOption(const char* name, const char*& value, const char*& comment) const {
  return queryOption(name, value, &comment);
}
bool VelClIniFile::getOption(const char* name, int& value) const {
  return queryOption(name, value, nullptr);
}
bool VelClIniFile::getOption(const char* name, int& value, const char*& comment) const {
  return queryOption(name, value, &comment);
}
bool VelClIniFile::getOption(const char* name, long& value) const {
  return queryOption(name, value, nullptr);
}
bool VelClIniFile::getOption(const char* name, long& value, const char*& comment) const {
  return queryOption(name, value, &comment);
}
bool VelClIniFile::getOption(const char* name, unsigned int& value) const {
  return queryOption(name, value, nullptr);
}
bool VelClIniFile::getOption(const char* name, unsigned int& value, const char*& comment) const {
  return queryOption(name, value, &comment);
}
bool VelClIniFile::getOption(const char* name, unsigned long& value) const {
  return queryOption(name, value, nullptr);
}
bool VelClIniFile::getOption(const char* name, unsigned long& value, const char*& comment) const {
  return queryOption(name, value, &comment);
}
bool VelClIniFile::getOption(const char* name, char& value) const {
  return queryOption(name, value, nullptr);
}
bool VelClIniFile::getOption(const char* name, char& value, const char*& comment) const {
  return queryOption(name, value, &comment);
}
bool VelClIniFile::getOptionBool(const char* name, bool& value) const {
  return queryOption(name, value, nullptr);
}
bool VelClIniFile::getOption(const char* name, bool& value, const char*& comment) const {
  return queryOption(name, value, &comment);
}
