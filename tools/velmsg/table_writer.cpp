// Converts texts from the notation of message catalogs to that of string tables, and writes them as C++.
#include "tools/velmsg/table_writer.h"

#include <algorithm>
#include <array>

#include "base/ascii.h"
#include "tools/velmsg/source_encoding.h"
#include "tools/velmsg/texts.h"

namespace vel::velmsg {
namespace {

constexpr std::uint32_t kMaxInsert = 10;
constexpr std::uint32_t kEnglishUnitedStates = 1033;

/// Consumes an insert after its "%" and appends it. Returns false for one that a table cannot hold.
bool addInsert(std::string_view& rest, std::string& out) {
  const std::size_t digits = rest.size() > 1 && isAsciiDigit(rest[1]) ? 2 : 1;
  std::uint32_t number = 0;
  for (const char digit : rest.substr(0, digits))
    number = number * 10 + static_cast<std::uint32_t>(digit - '0');
  rest.remove_prefix(digits);
  if (rest.starts_with("!s!")) rest.remove_prefix(3);
  // A digit after the insert would become a part of its number.
  const bool isPlain = rest.empty() || (rest[0] != '!' && !isAsciiDigit(rest[0]));
  out += '%' + std::to_string(number);
  return isPlain && number <= kMaxInsert;
}

/// Returns what "%" and another character that is not a digit mean.
std::string_view escaped(const char& c) {
  switch (c) {
    case 'n':
      return "\n";
    case 't':
      return "\t";
    case 'r':
      return "\r";
    case 'b':
      return " ";
    case '%':
      return "%%";
    default:
      return {&c, 1};
  }
}

/// Returns a byte as in a string literal. Three octal digits end an escape, whatever follows.
std::string literalByte(char c) {
  if (c == '\n') return "\\n";
  if (c == '"' || c == '\\') return std::string("\\") + c;
  const auto byte = static_cast<unsigned char>(c);
  // "??" would begin a trigraph.
  if (byte >= ' ' && byte < 0x7F && c != '?') return std::string(1, c);
  if (c == '?') return "\\?";
  const std::array digits = {'\\', static_cast<char>('0' + (byte >> 6)),
                             static_cast<char>('0' + (byte >> 3 & 7)), static_cast<char>('0' + (byte & 7))};
  return {digits.begin(), digits.end()};
}

std::string literal(std::string_view text) {
  std::string out = "\"";
  for (const char c : text) out += literalByte(c);
  return out + '"';
}

const SourceText& textIn(const MessageSource& source, const SourceMessage& message, std::uint16_t language) {
  const auto hasLanguage = [&](const SourceText& text) {
    return source.languages[text.language].number == language;
  };
  const auto found = std::ranges::find_if(message.texts, hasLanguage);
  return found == message.texts.end() ? message.texts.front() : *found;
}

/// Returns the texts by id. Entry 1 is the name of the table, unless there is a message 1; unused ids get
/// "?".
std::vector<std::string> tableEntries(const MessageSource& source, std::string_view name,
                                      std::uint16_t language, Diagnostics& diagnostics) {
  std::vector<std::string> entries = {"", '[' + std::string(name) + ']'};
  for (const SourceMessage& message : source.messages) {
    if (message.id == 0 || message.id > kMaxTableId) {
      addDiagnostic(diagnostics, {message.position, kNotInTable, std::to_string(message.id)});
      continue;
    }
    if (message.texts.empty()) continue;
    const SourceText& text = textIn(source, message, language);
    const auto converted = tableText(text.text);
    if (!converted) addDiagnostic(diagnostics, {text.position, kInsertNotInTable, {}});
    if (message.id >= entries.size()) entries.resize(message.id + 1, "?");
    entries[message.id] = converted.value_or("");
  }
  entries[0] = "[VEL_MSGTAB_SIGNATURE] " + std::to_string(entries.size());
  return entries;
}

}  // namespace

std::optional<std::string> tableText(std::string_view text) {
  std::string out;
  while (!text.empty()) {
    const char c = text[0];
    text.remove_prefix(1);
    if (c != '%') {
      out += c;
      continue;
    }
    if (text.empty() || text[0] == '0') return text.empty() ? std::nullopt : std::optional(out);
    if (isAsciiDigit(text[0])) {
      if (!addInsert(text, out)) return std::nullopt;
      continue;
    }
    out += escaped(text[0]);
    text.remove_prefix(1);
  }
  return out;
}

std::uint16_t languageOfTable(const MessageSource& source) {
  std::optional<std::uint16_t> first;
  for (const SourceMessage& message : source.messages)
    for (const SourceText& text : message.texts) {
      const std::uint16_t language = source.languages[text.language].number;
      if (language == kEnglishUnitedStates) return language;
      if (!first) first = language;
    }
  return first.value_or(0);
}

std::string stringTable(const MessageSource& source, std::string_view name, std::uint16_t language,
                        Diagnostics& diagnostics) {
  const std::string array = std::string(name) + "_texts", count = std::string(name) + "_text_count";
  std::string out =
      "// Made by velmsg. Changes are lost when the messages are compiled again.\n"
      "// A table for VelClMessageCatalog: entry 0 is its signature, and the others are the messages of "
      "their index.\n"
      "extern \"C\" {\n";
  out += "extern const char* const " + array + "[];\nextern const unsigned long " + count + ";\n";
  out += "const char* const " + array + "[] = {\n";
  const auto entries = tableEntries(source, name, language, diagnostics);
  for (const std::string& entry : entries) out += "    " + literal(entry) + ",\n";
  return out + "};\nconst unsigned long " + count + " = " + std::to_string(entries.size()) + ";\n}\n";
}

}  // namespace vel::velmsg
