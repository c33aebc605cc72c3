// Parses the lists that velini prints for any file: JSON, plain lines and shell assignments must hold the
// model, and must not assign a variable of the system. The input is a byte of options and the text.
#include "codepage/test/strict_run.h"
#include "fuzz/bytes.h"
#include "fuzz/ini_model.h"
#include "tools/velini/forms.h"

namespace fuzz::inifile_forms {

namespace {

using vel::velini::Form;
using vel::velini::ShellNames;
using Model = std::vector<IniSection>;

/// Returns the sections and options that queries by name find: the first one of each name.
Model firstOf(const VelClIniFile& file) {
  Model model;
  for (const auto* section = file.getFirstSection(); section != nullptr; section = section->getNext()) {
    if (file.getExistingSection(section->getName()) != section) continue;
    model.push_back({section->getName(), {}});
    for (const auto* option = section->getFirstOption(); option != nullptr; option = option->getNext())
      if (file.getExistingOption(*section, option->getName()) == option)
        model.back().options.push_back({option->getName(), option->getValue(), ""});
  }
  return model;
}

/// Reads printed text from left to right. The run fails at any other text than the expected one, and if text
/// is left unread.
class Reader {
 public:
  explicit Reader(const std::string& text) : text_(text) {}
  Reader(const Reader&) = delete;
  ~Reader() { require(at_ == text_.size()); }

  char next() {
    require(at_ < text_.size());
    return text_[at_++];
  }
  bool accept(std::string_view text) {
    if (text_.compare(at_, text.size(), text) != 0) return false;
    at_ += text.size();
    return true;
  }
  void expect(std::string_view text) { require(accept(text)); }

 private:
  const std::string& text_;
  std::size_t at_ = 0;
};

std::string list(const VelClIniFile& file, Form form, ShellNames& names) {
  std::ostringstream out;
  writeOptions(out, form, vel::velini::recordsOf(file), nullptr, names);
  return out.str();
}

std::string listNames(const VelClIniFile& file, Form form) {
  std::ostringstream out;
  writeSections(out, form, vel::velini::recordsOf(file));
  return out.str();
}

// ---- JSON

std::string charactersOf(std::string_view text) {
  static VelClStrictConversion conversion(VelClCCSID(1208), VelClCCSID(1208),
                                          VelClStrictConversion::VelEnPolicy::SKIP);
  return convertInPieces(conversion, text, {}).bytes;
}

/// Expects ill-formed bytes to be escaped as the character of the same value, and no other escapes above 7F.
void expectJsonText(Reader& json, const std::string& text) {
  std::string all, characters;
  json.expect("\"");
  while (!json.accept("\"")) {
    if (json.accept("\\u00")) {
      const std::string digits = {json.next(), json.next()};
      require(digits.find_first_not_of("0123456789abcdef") == std::string::npos);
      all += static_cast<char>(std::stoi(digits, nullptr, 16));
      if (digits < "80") characters += all.back();
      continue;
    }
    const bool isEscaped = json.accept("\\");
    const char c = json.next();
    require({static_cast<unsigned char>(c) >= 0x20, isEscaped == (c == '"' || c == '\\')});
    all += c;
    characters += c;
  }
  require({all == text, characters == charactersOf(text)});
}

void checkJson(const Model& model, const std::string& printed, const std::string& printedNames) {
  Reader json(printed), names(printedNames);
  const char *separator = "{\n", *nameSeparator = "[";
  for (const auto& [section, options] : model) {
    json.expect(std::exchange(separator, ",\n"));
    expectJsonText(json, section);
    json.expect(": {");
    const char* optionSeparator = "";
    for (const auto& option : options) {
      json.expect(std::exchange(optionSeparator, ", "));
      expectJsonText(json, option.name);
      json.expect(": ");
      expectJsonText(json, option.value);
    }
    json.expect("}");
    names.expect(std::exchange(nameSeparator, ", "));
    expectJsonText(names, section);
  }
  json.expect(model.empty() ? "{\n}\n" : "\n}\n");
  names.expect(model.empty() ? "[]\n" : "]\n");
}

// ---- Plain lines

void expectField(Reader& lines, const std::string& text, char end) {
  constexpr std::string_view kNames = "ntr\\", kSpecial = "\n\t\r\\";
  std::string field;
  for (char c; (c = lines.next()) != end; field += c) {
    require(kSpecial.substr(0, 3).find(c) == std::string_view::npos);
    if (c != '\\') continue;
    const std::size_t special = kNames.find(lines.next());
    require(special != std::string_view::npos);
    c = kSpecial[special];
  }
  require(field == text);
}

void checkPlain(const Model& model, const std::string& printed, const std::string& printedNames) {
  Reader lines(printed), names(printedNames);
  for (const auto& [section, options] : model) {
    expectField(names, section, '\n');
    for (const auto& option : options) {
      expectField(lines, section, '\t');
      expectField(lines, option.name, '\t');
      expectField(lines, option.value, '\n');
    }
  }
}

// ---- The shell

/// Expects a word of the shell, of quoted pieces and of quotes after a backslash, and the end of its line.
void expectWord(Reader& script, const std::string& text) {
  std::string word;
  while (!script.accept("\n")) {
    if (script.accept("\\'")) {
      word += '\'';
      continue;
    }
    script.expect("'");
    for (char c; (c = script.next()) != '\'';) word += c;
  }
  require(word == text);
}

std::string asVariable(const std::string& name, const char* prefix) {
  std::string variable;
  for (const char c : name) variable += std::isalnum(static_cast<unsigned char>(c)) != 0 ? c : '_';
  if (prefix != nullptr) return prefix + variable;
  return variable.empty() || std::isdigit(static_cast<unsigned char>(variable[0])) != 0 ? "_" + variable
                                                                                        : variable;
}

/// Expects the prefix, or a lower-case letter, which the variables of the system do not have.
void checkVariable(const std::string& name, const char* prefix) {
  for (const char* steering : {"PATH", "IFS", "ENV", "PS4", "HOME", "CDPATH", "LD_PRELOAD", "LD_LIBRARY_PATH",
                               "BASH_ENV", "SHELLOPTS", "PROMPT_COMMAND", "LC_ALL", "path", "http_proxy"})
    require(name != steering);
  require(prefix != nullptr ? name.starts_with(prefix)
                            : name.find_first_of("abcdefghijklmnopqrstuvwxyz") != std::string::npos);
}

void checkShell(const Model& model, const std::string& printed, const std::string& printedNames,
                const char* prefix, const std::string& refused) {
  Reader script(printed), names(printedNames);
  bool isRefused = false;
  for (const auto& [section, options] : model) {
    expectWord(names, section);
    for (const auto& option : options) {
      const std::string variable = asVariable(std::string(section).append("_").append(option.name), prefix);
      script.expect(variable + "=");
      expectWord(script, option.value);
      isRefused = isRefused || variable == refused;
      if (refused.empty()) checkVariable(variable, prefix);
    }
  }
  require(isRefused != refused.empty());
}

void run(Bytes bytes) {
  constexpr const char* kPrefixes[] = {nullptr, "C_", "L_", "LD_"};
  const unsigned int options = bytes.byte();
  VelClIniFile file("unused");
  file.loadFromBuffer(bytes.rest().data(), bytes.rest().size(), '\n', (options & 1) != 0, true);
  const char* const prefix = kPrefixes[options >> 1 & 3];
  ShellNames names(prefix);
  const Model all = modelOf(file), first = firstOf(file);
  checkJson(first, list(file, Form::Json, names), listNames(file, Form::Json));
  checkPlain(all, list(file, Form::Plain, names), listNames(file, Form::Plain));
  require(names.refused().empty());
  const std::string script = list(file, Form::Shell, names);
  checkShell(first, script, listNames(file, Form::Shell), prefix, names.refused());
}

const Target target("inifile_forms", run);

}  // namespace

}  // namespace fuzz::inifile_forms
