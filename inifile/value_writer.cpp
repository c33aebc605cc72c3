// Writes values for the editor, in a form that value_parser.cpp reads back unchanged: without quotes where
// possible, otherwise as one string with escapes. VelClIniFileSave writes a simpler form, see
// ini_file_save.cpp.
#include "inifile/value_writer.h"

#include <cstring>

#include "base/digits.h"
#include "inifile/text_rules.h"

namespace vel::inifile {

namespace {

/// Whether the parser would trim a part of the bare value, end it at a comment or replace a part of it. A
/// backslash alone needs no quotes: outside of them it is an ordinary character.
bool needsQuotes(const char* value) noexcept {
  const std::size_t length = std::strlen(value);
  if (length == 0) return false;
  if (isSpace(value[0]) || isSpace(value[length - 1])) return true;
  for (const char* c = value; *c != '\0'; ++c)
    if (isControl(*c) || std::strchr(";\"'", *c) != nullptr || (c[0] == '$' && c[1] == '(')) return true;
  return false;
}

/// Writes a control character as its number. The parser consumes every hexadecimal digit that follows, so
/// before such a digit the string is closed and a new one begun, "\x01""A", which the parser concatenates.
void writeNumber(String& out, char c, char next) {
  const auto digits = hexPair(static_cast<unsigned char>(c), kLowerHexDigits);
  out.append("\\x").append(digits.data(), digits.size());
  if (isHexDigit(next)) out += "\"\"";
}

/// Writes one character of a string. `next` is the one after it.
void writeQuoted(String& out, char c, char next) {
  constexpr const char* kNamed = "\a\b\t\n\v\f\r\\\"";
  constexpr const char* kNames = "abtnvfr\\\"";
  if (const char* const named = std::strchr(kNamed, c); named != nullptr) {
    out += '\\';
    out += kNames[named - kNamed];
  } else if (isControl(c)) {
    writeNumber(out, c, next);
  } else {
    out += c;
  }
}

}  // namespace

void writeValue(String& out, const char* value, bool quoted) {
  if (!quoted && !needsQuotes(value)) {
    out += value;
    return;
  }
  out += '"';
  for (; *value != '\0'; ++value) writeQuoted(out, value[0], value[1]);
  out += '"';
}

}  // namespace vel::inifile
