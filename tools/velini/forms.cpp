// Writes plain text, INI lines, shell assignments and JSON. Values are read from files that anybody may have
// written, so each form escapes what has a meaning in it:
//
//   plain    one line per option, separated by tabs: tab, line break and backslash are escaped
//   ini      as VelClIniFileSave writes it, or in the dialect of the file
//   shell    NAME='value', where only the quote itself is special; names are shell_names.cpp's work
//   json     one object of objects; control characters, quotes and bytes that are not UTF-8 are escaped
//
// Names may repeat in a file. Plain and ini show all of them, shell and json only the one of each name that
// programs find.
#include "tools/velini/forms.h"

#include <cstring>
#include <iterator>
#include <ostream>
#include <sstream>

#include "tools/json_text.h"
#include "tools/velini/dialect_values.h"
#include "vel_include/vel_inifile.h"
#include "vel_include/vel_quoting.h"

namespace vel::velini {

namespace {

using tools::jsonText;

/// Gives access to the protected functions that write single lines of an INI file.
class Lines : public VelClIniFileSave {
 public:
  Lines() : VelClIniFileSave("") {}
  using VelClIniFileSave::saveOption;
};

void writeShell(std::ostream& out, ShellNames& names, const std::string& section, const Option& option) {
  out << names.variable(section + option.name) << '=' << velQuotedForShell(option.value) << '\n';
}

void writeJsonOptions(std::ostream& out, const Section& section) {
  const char* separator = "";
  out << '{';
  for (const Option& option : section.options) {
    if (!option.counts) continue;
    out << separator << jsonText(option.name) << ": " << jsonText(option.value);
    separator = ", ";
  }
  out << '}';
}

void writeJson(std::ostream& out, const Records& records) {
  const char* separator = "\n";
  out << '{';
  for (const Section& section : records.sections) {
    if (!section.counts) continue;
    out << separator << jsonText(section.name) << ": ";
    writeJsonOptions(out, section);
    separator = ",\n";
  }
  out << "\n}\n";
}

/// Whether variables are named for the option alone, or for section and option.
enum class Named { Alone, WithSection };

/// As VelClIniFileSave, which writes no empty values.
void writeIni(std::ostream& out, const Dialect& dialect, const Option& option) {
  if (dialect.values != Values::Library || !option.value.empty()) out << iniOption(dialect, option) << '\n';
}

void writeSection(std::ostream& out, Form form, const Dialect& dialect, const Section& section,
                  ShellNames& names, Named named) {
  const std::string begin = named == Named::Alone ? "" : section.name + "_";
  if (form == Form::Ini) out << '\n' << iniHeader(dialect, section.name) << '\n';
  for (const Option& option : section.options) {
    if (form == Form::Ini)
      writeIni(out, dialect, option);
    else if (form == Form::Plain)
      out << plainText(section.name) << '\t' << plainText(option.name) << '\t' << plainText(option.value)
          << '\n';
    else if (option.counts)
      writeShell(out, names, begin, option);
  }
}

void writeName(std::ostream& out, Form form, const Dialect& dialect, const std::string& name) {
  switch (form) {
    case Form::Plain:
      out << plainText(name) << '\n';
      break;
    case Form::Ini:
      out << iniHeader(dialect, name) << '\n';
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

std::string plainText(std::string_view text) {
  return withEscapes(text, "\n\t\r\\", "ntr\\");
}

std::string iniHeader(const Dialect& dialect, std::string_view section) {
  // The section before the first header has none.
  return section.empty() && dialect.hasOptionsBeforeSections ? "" : writtenHeader(dialect, section);
}

std::string iniOption(const Dialect& dialect, const Option& option) {
  if (dialect.values == Values::Library) {
    std::ostringstream line;
    Lines().saveOption(line, option.name.c_str(), option.value.c_str(), option.comment.c_str());
    std::string text = line.str();
    if (!text.empty()) text.pop_back();
    return text.empty() ? option.name + "\t= " : text;
  }
  const std::string comment =
      option.comment.empty() ? "" : std::string(" ") + dialect.comments[0] + " " + option.comment;
  return dialect.indentation + option.name + dialect.separator +
         writtenValue(dialect, option.value, {false, true, dialect.indentation, "\n"}) + comment;
}

void writeValue(std::ostream& out, Form form, const Dialect& dialect, const Option& option,
                ShellNames& names) {
  switch (form) {
    case Form::Plain:
      out << option.value << '\n';
      break;
    case Form::Ini:
      writeIni(out, dialect, option);
      break;
    case Form::Shell:
      writeShell(out, names, "", option);
      break;
    case Form::Json:
      out << jsonText(option.value) << '\n';
      break;
  }
}

void writeSections(std::ostream& out, Form form, const Records& records) {
  const bool isJson = form == Form::Json;
  const char* separator = isJson ? "[" : "";
  for (const Section& section : records.sections) {
    if (form != Form::Ini && form != Form::Plain && !section.counts) continue;
    out << separator;
    writeName(out, form, *records.dialect, section.name);
    separator = isJson ? ", " : "";
  }
  if (isJson) out << (records.sections.empty() ? "[]\n" : "]\n");
}

void writeOptions(std::ostream& out, Form form, const Records& records, const Section* only,
                  ShellNames& names) {
  const Dialect& dialect = *records.dialect;
  if (form == Form::Json) {
    if (only == nullptr) return writeJson(out, records);
    writeJsonOptions(out, *only);
    out << '\n';
    return;
  }
  if (only != nullptr) return writeSection(out, form, dialect, *only, names, Named::Alone);
  for (const Section& section : records.sections)
    if (form != Form::Shell || section.counts)
      writeSection(out, form, dialect, section, names, Named::WithSection);
}

}  // namespace vel::velini
