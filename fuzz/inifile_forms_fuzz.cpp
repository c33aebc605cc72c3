// What velini prints of any file is read back by small readers of their own: JSON, plain lines and shell
// assignments hold what the model holds, and no assignment is for a variable of the system's. The input is a
// byte of options and the text.
#include <cctype>
#include <optional>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "fuzz/bytes.h"
#include "tools/velini/forms.h"

namespace {

using fuzz::require;
using vel::velini::Form;

using Pairs = std::vector<std::pair<std::string, std::string>>;
using Sections = std::vector<std::pair<std::string, Pairs>>;

bool isFirst(const VelClIniFile& file, const VelClIniFileSection& section) {
  return file.getExistingSection(section.getName()) == &section;
}

/// What a question by name finds, or all, as the lists show it.
Sections sectionsOf(const VelClIniFile& file, bool onlyFirst) {
  Sections sections;
  for (const auto* section = file.getFirstSection(); section != nullptr; section = section->getNext()) {
    if (onlyFirst && !isFirst(file, *section)) continue;
    Pairs options;
    for (const auto* option = section->getFirstOption(); option != nullptr; option = option->getNext())
      if (!onlyFirst || file.getExistingOption(*section, option->getName()) == option)
        options.emplace_back(option->getName(), option->getValue());
    sections.emplace_back(section->getName(), options);
  }
  return sections;
}

/// Bytes that a cursor passes; everything else than what is expected ends the run.
class Reader {
 public:
  explicit Reader(std::string_view text) : rest_(text) {}

  bool atEnd() const { return rest_.empty(); }
  char next() {
    require(!rest_.empty());
    const char c = rest_[0];
    rest_.remove_prefix(1);
    return c;
  }
  bool accept(std::string_view text) {
    if (!rest_.starts_with(text)) return false;
    rest_.remove_prefix(text.size());
    return true;
  }
  void expect(std::string_view text) { require(accept(text)); }
  std::string_view rest() const { return rest_; }

 private:
  std::string_view rest_;
};

// ---- UTF-8, by the numbers of characters

void addCharacter(std::string& text, std::uint32_t character) {
  if (character < 0x80) {
    text += static_cast<char>(character);
    return;
  }
  const int more = character < 0x800 ? 1 : character < 0x10000 ? 2 : 3;
  text += static_cast<char>((0xF00 >> (more + 1) & 0xFF) | static_cast<int>(character >> 6 * more));
  for (int i = more - 1; i >= 0; --i) text += static_cast<char>(0x80 | (character >> 6 * i & 0x3F));
}

/// The bytes of the character at the start; none when it is not the one way to write one.
std::size_t lengthOfCharacter(std::string_view text) {
  const auto lead = static_cast<unsigned char>(text[0]);
  const std::size_t length = lead < 0x80       ? 1
                             : lead >> 5 == 6  ? 2
                             : lead >> 4 == 14 ? 3
                             : lead >> 3 == 30 ? 4
                                               : 0;
  if (length < 2 || text.size() < length) return length == 1 ? 1 : 0;
  std::uint32_t character = lead & (0x7FU >> length);
  for (std::size_t i = 1; i < length; ++i)
    character = character << 6 | (static_cast<unsigned char>(text[i]) & 0x3FU);
  std::string written;
  if (character > 0x10FFFF || character >> 11 == 0x1B) return 0;
  addCharacter(written, character);
  return written == text.substr(0, length) ? length : 0;
}

/// A byte that belongs to no character is the character of its number.
std::string asCharacters(std::string_view bytes) {
  std::string text;
  while (!bytes.empty()) {
    const std::size_t length = lengthOfCharacter(bytes);
    if (length == 0)
      addCharacter(text, static_cast<unsigned char>(bytes[0]));
    else
      text += bytes.substr(0, length);
    bytes.remove_prefix(length == 0 ? 1 : length);
  }
  return text;
}

// ---- JSON

std::uint32_t readHexadecimal(Reader& json) {
  std::uint32_t number = 0;
  for (int i = 0; i < 4; ++i) {
    const char c = json.next();
    require(std::isxdigit(static_cast<unsigned char>(c)) != 0);
    number = number * 16 + static_cast<std::uint32_t>(c <= '9' ? c - '0' : (c | 0x20) - 'a' + 10);
  }
  return number;
}

std::string readJsonText(Reader& json) {
  std::string text;
  json.expect("\"");
  while (!json.accept("\"")) {
    if (json.accept("\\u")) {
      addCharacter(text, readHexadecimal(json));
    } else if (json.accept("\\")) {
      const char c = json.next();
      require(c == '"' || c == '\\');
      text += c;
    } else {
      require(!json.atEnd() && static_cast<unsigned char>(json.rest()[0]) >= 0x20);
      const std::size_t length = lengthOfCharacter(json.rest());
      require(length != 0);
      for (std::size_t i = 0; i < length; ++i) text += json.next();
    }
  }
  return text;
}

void skipSpace(Reader& json) {
  while (json.accept(" ") || json.accept("\n")) continue;
}

/// Members of an object: names, and what `readValue` makes of their values.
template <typename Value, typename ReadValue>
std::vector<std::pair<std::string, Value>> readObject(Reader& json, ReadValue readValue) {
  std::vector<std::pair<std::string, Value>> members;
  json.expect("{");
  for (skipSpace(json); !json.accept("}"); skipSpace(json)) {
    if (!members.empty()) json.expect(",");
    skipSpace(json);
    std::string name = readJsonText(json);
    json.expect(":");
    skipSpace(json);
    members.emplace_back(std::move(name), readValue(json));
  }
  return members;
}

Pairs readOptions(Reader& json) {
  return readObject<std::string>(json, readJsonText);
}

Sections asCharacters(Sections sections) {
  for (auto& [name, options] : sections) {
    name = asCharacters(name);
    for (auto& [option, value] : options) option = asCharacters(option), value = asCharacters(value);
  }
  return sections;
}

void checkJson(const VelClIniFile& file, const std::string& printed, const std::string& names) {
  const Sections wanted = asCharacters(sectionsOf(file, true));
  Reader json(printed);
  require(readObject<Pairs>(json, readOptions) == wanted);
  json.expect("\n");
  require(json.atEnd());
  Reader list(names);
  list.expect("[");
  for (std::size_t i = 0; i < wanted.size(); ++i) {
    if (i > 0) list.expect(", ");
    require(readJsonText(list) == wanted[i].first);
  }
  list.expect("]\n");
  require(list.atEnd());
}

// ---- Plain lines

std::string readField(Reader& lines, char end) {
  std::string field;
  for (char c; (c = lines.next()) != end;) {
    require(c != '\t' && c != '\n' && c != '\r');
    if (c == '\\') {
      c = lines.next();
      require(c == 'n' || c == 't' || c == 'r' || c == '\\');
      c = c == 'n' ? '\n' : c == 't' ? '\t' : c == 'r' ? '\r' : c;
    }
    field += c;
  }
  return field;
}

void checkPlain(const VelClIniFile& file, const std::string& printed, const std::string& names) {
  Reader lines(printed), list(names);
  for (const auto& [section, options] : sectionsOf(file, false)) {
    require(readField(list, '\n') == section);
    for (const auto& [option, value] : options)
      require(readField(lines, '\t') == section && readField(lines, '\t') == option &&
              readField(lines, '\n') == value);
  }
  require(lines.atEnd() && list.atEnd());
}

// ---- INI lines: one for each value that is not empty, and two for each section

void checkIni(const VelClIniFile& file, const std::string& printed) {
  Reader lines(printed);
  const auto skipLine = [&lines] {
    while (lines.next() != '\n') continue;
  };
  for (const auto& [section, options] : sectionsOf(file, false)) {
    lines.expect("\n[" + section + "]\n");
    for (const auto& [option, value] : options) {
      if (value.empty()) continue;
      lines.expect(option + "\t= ");
      skipLine();
    }
  }
  require(lines.atEnd());
}

// ---- The shell

/// A word as a shell reads it: quoted pieces, and quotes behind a back-slash. The line break ends it.
std::string readWord(Reader& script) {
  std::string word;
  while (!script.accept("\n")) {
    if (script.accept("\\")) {
      require(script.next() == '\'');
      word += '\'';
      continue;
    }
    script.expect("'");
    for (char c; (c = script.next()) != '\'';) word += c;
  }
  return word;
}

std::string readVariable(Reader& script) {
  std::string name;
  for (char c; (c = script.next()) != '=';) {
    const bool isDigit = c >= '0' && c <= '9';
    require(isDigit || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_');
    require(!isDigit || !name.empty());
    name += c;
  }
  return name;
}

std::string asVariable(const std::string& name, const char* prefix) {
  std::string variable;
  for (const char c : name) {
    const bool isPlain =
        static_cast<unsigned char>(c) < 0x80 && std::isalnum(static_cast<unsigned char>(c)) != 0;
    variable += isPlain ? c : '_';
  }
  if (prefix != nullptr) return prefix + variable;
  return variable.empty() || std::isdigit(static_cast<unsigned char>(variable[0])) != 0 ? "_" + variable
                                                                                        : variable;
}

/// None of those that everybody knows, and a letter that the system's have not, or the prefix.
void checkVariable(const std::string& name, const char* prefix) {
  for (const char* steering : {"PATH", "IFS", "ENV", "PS4", "HOME", "CDPATH", "LD_PRELOAD", "LD_LIBRARY_PATH",
                               "BASH_ENV", "SHELLOPTS", "PROMPT_COMMAND", "LC_ALL", "path", "http_proxy"})
    require(name != steering);
  require(prefix != nullptr ? name.starts_with(prefix)
                            : name.find_first_of("abcdefghijklmnopqrstuvwxyz") != std::string::npos);
}

void checkShell(const VelClIniFile& file, const std::string& printed, const std::string& names,
                const char* prefix, const std::string& refused) {
  Reader script(printed), list(names);
  bool isRefused = false;
  for (const auto& [section, options] : sectionsOf(file, true)) {
    require(readWord(list) == section);
    for (const auto& [option, value] : options) {
      const std::string variable = readVariable(script);
      require(variable == asVariable(std::string(section).append("_").append(option), prefix) &&
              readWord(script) == value);
      isRefused = isRefused || variable == refused;
      if (refused.empty()) checkVariable(variable, prefix);
    }
  }
  require(script.atEnd() && list.atEnd() && isRefused != refused.empty());
}

std::string listOf(const VelClIniFile& file, Form form, vel::velini::ShellNames& names) {
  std::ostringstream out;
  writeOptions(out, form, file, nullptr, names);
  return out.str();
}

std::string namesOf(const VelClIniFile& file, Form form) {
  std::ostringstream out;
  writeSections(out, form, file);
  return out.str();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  constexpr const char* kPrefixes[] = {nullptr, "C_", "L_", "LD_"};
  fuzz::Bytes bytes(data, size);
  const unsigned int options = bytes.number();
  const std::string_view text = bytes.rest();
  VelClIniFile file("unused");
  file.loadFromBuffer(text.data(), text.size(), '\n', (options & 1) != 0, true);
  const char* const prefix = kPrefixes[options >> 1 & 3];
  vel::velini::ShellNames names(prefix);
  checkJson(file, listOf(file, Form::Json, names), namesOf(file, Form::Json));
  checkPlain(file, listOf(file, Form::Plain, names), namesOf(file, Form::Plain));
  checkIni(file, listOf(file, Form::Ini, names));
  require(names.refused().empty());
  const std::string script = listOf(file, Form::Shell, names);
  checkShell(file, script, namesOf(file, Form::Shell), prefix, names.refused());
  return 0;
}
