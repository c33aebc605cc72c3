// Writes a model as the lines of an INI file:
//
//   [section]
//   name\t= value\t; comment
//
// An empty line precedes each header. Files in place are replaced by file_output.cpp. The quoting differs
// from value_writer.cpp's: the protected functions are documented for derived classes, so their output must
// not change.
#include "base/digits.h"
#include "foundation/allocator.h"
#include "inifile/file_output.h"
#include "inifile/text_rules.h"
#include "vel_include/vel_helpers.h"
#include "vel_include/vel_inifile.h"

#include <algorithm>
#include <cstring>

namespace {

bool isPresent(const char* text) {
  return text != nullptr && *text != '\0';
}

/// Writes unformatted, so that a width or fill character that the program set on the stream has no effect.
std::ostream& put(std::ostream& stream, const char* text) {
  return text != nullptr ? stream.write(text, static_cast<std::streamsize>(std::strlen(text))) : stream;
}

/// Room for any 32-bit number with its sign and terminator.
constexpr std::size_t kDigits = 12;

bool needsQuotes(const char* value) {
  const char* const end = value + std::strlen(value);
  return std::any_of(value, end, [](char c) { return c == ';' || vel::inifile::isControl(c); });
}

}  // namespace

VelClIniFileSave::VelClIniFileSave(const VelClFilenameABase& name)
    : VelClIniFile(name), output_(vel::create<vel::inifile::FileOutput>()), opened_(false) {}

VelClIniFileSave::~VelClIniFileSave() {
  vel::destroy(output_);
}

bool VelClIniFileSave::save() {
  if (!opened_ && !output_->open(getAsCString())) return false;
  save(*output_);
  // Intentional: callers get false after save(stream), because that opened no file.
  if (!output_->isOpen()) return false;
  opened_ = false;
  return output_->close();
}

bool VelClIniFileSave::hasKeptRights() const {
  return output_->keepsRights();
}

bool VelClIniFileSave::save(std::ostream& stream) {
  opened_ = true;
  for (const VelClIniFileSection* section = getFirstSection(); section != nullptr;
       section = section->getNext()) {
    // Intentional: sections without a name are not saved, nor are options without one.
    if (*section->getName() == '\0') continue;
    saveSection(stream, section->getName(), nullptr);
    const VelClIniFileOption* option = section->getFirstOption();
    for (; option != nullptr; option = option->getNext())
      if (*option->getName() != '\0')
        saveOption(stream, option->getName(), option->getValue(), option->getComment());
  }
  return stream.flush().good();
}

bool VelClIniFileSave::saveSection(std::ostream& stream, const char* name, const char* comment) const {
  put(put(put(stream, "\n["), name), "]");
  return saveComment(stream, comment);
}

bool VelClIniFileSave::saveComment(std::ostream& stream, const char* comment) const {
  if (isPresent(comment)) put(put(stream, "\t; "), comment);
  return stream.put('\n').good();
}

bool VelClIniFileSave::saveNumber(std::ostream& stream, const char* name, const char* digits,
                                  const char* comment) const {
  put(put(put(stream, name), "\t= "), digits);
  return saveComment(stream, comment);
}

bool VelClIniFileSave::saveOption(std::ostream& stream, const char* name, int value,
                                  const char* comment) const {
  return saveOption(stream, name, static_cast<long>(value), comment);
}

bool VelClIniFileSave::saveOption(std::ostream& stream, const char* name, unsigned int value,
                                  const char* comment) const {
  return saveOption(stream, name, static_cast<unsigned long>(value), comment);
}

bool VelClIniFileSave::saveOption(std::ostream& stream, const char* name, long value,
                                  const char* comment) const {
  char digits[kDigits];
  velLtoa(value, digits);
  return saveNumber(stream, name, digits, comment);
}

bool VelClIniFileSave::saveOption(std::ostream& stream, const char* name, unsigned long value,
                                  const char* comment) const {
  char digits[kDigits];
  velULtoa(value, digits);
  return saveNumber(stream, name, digits, comment);
}

bool VelClIniFileSave::saveOption(std::ostream& stream, const char* name, char value,
                                  const char* comment) const {
  put(put(stream, name), "\t= '");
  saveChar(stream, value);
  stream.put('\'');
  return saveComment(stream, comment);
}

bool VelClIniFileSave::saveOptionBool(std::ostream& stream, const char* name, bool value,
                                      const char* comment) const {
  return saveOption(stream, name, value ? getStringTrue() : getStringFalse(), comment);
}

bool VelClIniFileSave::saveOption(std::ostream& stream, const char* name, const char* value,
                                  const char* comment) const {
  // Intentional: options with empty values are not saved.
  if (!isPresent(value)) return stream.good();
  put(put(stream, name), "\t= ");
  if (needsQuotes(value)) {
    stream.put('"');
    for (const char* c = value; *c != '\0'; ++c) saveChar(stream, *c);
    stream.put('"');
  } else {
    put(stream, value);
  }
  return saveComment(stream, comment);
}

bool VelClIniFileSave::saveChar(std::ostream& stream, char c) const {
  constexpr const char* kNamed = "\a\b\t\n\v\f\r\\";
  constexpr const char* kNames = "abtnvfr\\";
  const char* const named = c != '\0' ? std::strchr(kNamed, c) : nullptr;
  // Intentional: a double quote is not escaped, so a value with one does not round-trip.
  if (named == nullptr && !vel::inifile::isControl(c)) return stream.put(c).good();
  stream.put('\\');
  if (named != nullptr) return stream.put(kNames[named - kNamed]).good();
  const auto digits = vel::hexPair(static_cast<unsigned char>(c), vel::kLowerHexDigits);
  return stream.put('x').put(digits[0]).put(digits[1]).good();
}
