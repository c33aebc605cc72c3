// Writes plain text, INI lines, shell assignments and JSON. Values are read from files that anybody may have
// written, so each form escapes what has a meaning in it:
//
//   plain    one line per option, separated by tabs: tab, line break and backslash are escaped
//   ini      as VelClIniFileSave writes it
//   shell    NAME='value', where only the quote itself is special; names are shell_names.cpp's work
//   json     one object of objects; control characters, quotes and bytes that are not UTF-8 are escaped
//
// Names may repeat in a file. Plain and ini show all of them, shell and json only the first of each name,
// which is the one that programs find.
#include "tools/velini/forms.h"

#include <cstdint>
#include <cstring>
#include <iterator>
#include <ostream>
#include <string>
#include <string_view>

#include "base/digits.h"
#include "base/utf.h"
#include "inifile/first_records.h"
#include "vel_include/vel_quoting.h"

namespace vel::velini {

namespace {

using inifile::isFirst;

using Section = VelClIniFileSection;
using Option = VelClIniFileOption;

/// Gives access to the protected functions that write single lines of an INI file.
class Lines : public VelClIniFileSave {
 public:
  Lines() : VelClIniFileSave("") {}
  using VelClIniFileSave::saveOption;
  using VelClIniFileSave::saveSection;
};

std::string escaped(const char* text) {
  constexpr std::string_view kSpecial = "\n\t\r\\";
  constexpr std::string_view kNames = "ntr\\";
  std::string result;
  for (; *text != '\0'; ++text) {
    const std::size_t found = kSpecial.find(*text);
    if (found != std::string_view::npos) result += '\\';
    result += found != std::string_view::npos ? kNames[found] : *text;
  }
  return result;
}

/// Returns how many bytes the UTF-8 character at the start has, 0 for ill-formed text.
std::size_t characterLength(std::string_view text) {
  const Utf8Sequence sequence =
      utf8SequenceAt(reinterpret_cast<const unsigned char*>(text.data()), text.size());
  return sequence.isValid ? sequence.size : 0;
}

void addUnit(std::string& json, unsigned char byte) {
  const auto digits = hexPair(byte, kLowerHexDigits);
  json.append("\\u00").append(digits.data(), digits.size());
}

/// JSON must be well-formed UTF-8. A byte that belongs to no UTF-8 character becomes the character of its
/// number, as if it were Latin-1, since JSON cannot escape bytes.
std::string jsonText(std::string_view text) {
  std::string json = "\"";
  while (!text.empty()) {
    const std::size_t length = characterLength(text);
    const char c = text[0];
    if (c == '"' || c == '\\') json += '\\';
    if (length == 0 || static_cast<unsigned char>(c) < 0x20)
      addUnit(json, static_cast<unsigned char>(c));
    else
      json += text.substr(0, length);
    text.remove_prefix(length == 0 ? 1 : length);
  }
  return json + "\"";
}

void writeShell(std::ostream& out, ShellNames& names, const std::string& section, const Option& option) {
  out << names.variable(section + option.getName()) << '=' << velQuotedForShell(option.getValue()) << '\n';
}

void writeJsonOptions(std::ostream& out, const VelClIniFile& file, const Section& section) {
  const char* separator = "";
  out << '{';
  for (const Option* option = section.getFirstOption(); option != nullptr; option = option->getNext()) {
    if (!isFirst(file, section, *option)) continue;
    out << separator << jsonText(option->getName()) << ": " << jsonText(option->getValue());
    separator = ", ";
  }
  out << '}';
}

void writeJson(std::ostream& out, const VelClIniFile& file) {
  const char* separator = "\n";
  out << '{';
  for (const Section* section = file.getFirstSection(); section != nullptr; section = section->getNext()) {
    if (!isFirst(file, *section)) continue;
    out << separator << jsonText(section->getName()) << ": ";
    writeJsonOptions(out, file, *section);
    separator = ",\n";
  }
  out << "\n}\n";
}

/// Whether variables are named for the option alone, or for section and option.
enum class Named { Alone, WithSection };

void writeSection(std::ostream& out, Form form, const VelClIniFile& file, const Section& section,
                  ShellNames& names, Named named) {
  const Lines lines;
  const std::string begin = named == Named::Alone ? "" : section.getName() + std::string("_");
  if (form == Form::Ini) lines.saveSection(out, section.getName(), nullptr);
  for (const Option* option = section.getFirstOption(); option != nullptr; option = option->getNext()) {
    if (form == Form::Ini)
      lines.saveOption(out, option->getName(), option->getValue(), option->getComment());
    else if (form == Form::Plain)
      out << escaped(section.getName()) << '\t' << escaped(option->getName()) << '\t'
          << escaped(option->getValue()) << '\n';
    else if (isFirst(file, section, *option))
      writeShell(out, names, begin, *option);
  }
}

void writeName(std::ostream& out, Form form, const char* name) {
  switch (form) {
    case Form::Plain:
      out << escaped(name) << '\n';
      break;
    case Form::Ini:
      out << '[' << name << "]\n";
      break;
    case Form::Shell:
      out << velQuotedForShell(name) << '\n';
      break;
    case Form::Json:
      out << jsonText(name);
      break;
  }
}

}  // namespace

bool parseForm(const char* name, Form& form) {
  // In the order of the enumeration.
  constexpr const char* kNames[] = {"plain", "ini", "shell", "json"};
  for (std::size_t i = 0; i < std::size(kNames); ++i) {
    if (std::strcmp(name, kNames[i]) != 0) continue;
    form = static_cast<Form>(i);
    return true;
  }
  return false;
}

void writeValue(std::ostream& out, Form form, const Option& option, ShellNames& names) {
  switch (form) {
    case Form::Plain:
      out << option.getValue() << '\n';
      break;
    case Form::Ini:
      Lines().saveOption(out, option.getName(), option.getValue(), option.getComment());
      break;
    case Form::Shell:
      writeShell(out, names, "", option);
      break;
    case Form::Json:
      out << jsonText(option.getValue()) << '\n';
      break;
  }
}

void writeSections(std::ostream& out, Form form, const VelClIniFile& file) {
  const bool isJson = form == Form::Json;
  const char* separator = isJson ? "[" : "";
  for (const Section* section = file.getFirstSection(); section != nullptr; section = section->getNext()) {
    if (form != Form::Ini && form != Form::Plain && !isFirst(file, *section)) continue;
    out << separator;
    writeName(out, form, section->getName());
    separator = isJson ? ", " : "";
  }
  if (isJson) out << (file.getFirstSection() == nullptr ? "[]\n" : "]\n");
}

void writeOptions(std::ostream& out, Form form, const VelClIniFile& file, const Section* only,
                  ShellNames& names) {
  if (form == Form::Json) {
    if (only == nullptr) return writeJson(out, file);
    writeJsonOptions(out, file, *only);
    out << '\n';
    return;
  }
  if (only != nullptr) return writeSection(out, form, file, *only, names, Named::Alone);
  for (const Section* section = file.getFirstSection(); section != nullptr; section = section->getNext())
    if (form != Form::Shell || isFirst(file, *section))
      writeSection(out, form, file, *section, names, Named::WithSection);
}

}  // namespace vel::velini
