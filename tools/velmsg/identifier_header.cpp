// Writes the header of identifiers. Comment lines of the source are code of their author, and are copied; the
// texts of messages become comments, and must not end them.
#include "tools/velmsg/identifier_header.h"

#include <algorithm>

#include "base/ascii.h"
#include "base/digits.h"

namespace vel::velmsg {
namespace {

std::string upperCase(std::string text) {
  for (char& c : text) c = toAsciiUpper(c);
  return text;
}

std::string hexadecimal(std::uint32_t number, std::size_t width) {
  char digits[kMaxHexDigits];
  const std::string text(digits, writeHex(digits, number));
  return "0x" + std::string(width - std::min(width, text.size()), '0') + text;
}

/// A decimal number above the signed ones needs a suffix, so that it has 32 bits everywhere.
std::string idText(const SourceMessage& message) {
  if (message.outputBase != 10) return hexadecimal(message.id, 8);
  return std::to_string(message.id) + (message.id > 0x7FFFFFFF ? "U" : "");
}

void addLines(std::string& out, const std::vector<std::string>& lines) {
  for (const std::string& line : lines) (out += line) += '\n';
}

/// Adds a line of a comment, which C89 compilers have to read as well. The marks of comments are divided by a
/// blank, so that none ends in the text, or seems to begin there.
void addCommentLine(std::string& out, std::string_view line) {
  out += line.empty() ? " *" : " * ";
  for (const char c : line) {
    if ((c == '/' && out.back() == '*') || (c == '*' && out.back() == '/')) out += ' ';
    out += static_cast<unsigned char>(c) < ' ' || c == '\x7F' ? ' ' : c;
  }
  out += '\n';
}

void addText(std::string& out, std::string_view text) {
  while (!text.empty()) {
    const std::size_t length = std::min(text.find('\n'), text.size());
    addCommentLine(out, text.substr(0, length));
    text.remove_prefix(std::min(length + 1, text.size()));
  }
}

void addMessage(std::string& out, const SourceMessage& message) {
  addLines(out, message.comments);
  if (message.symbolicName.empty()) return;
  out += "/*\n * MessageId: " + message.symbolicName + '\n';
  if (!message.texts.empty() && !message.texts.front().text.empty()) {
    out += " *\n";
    addText(out, message.texts.front().text);
  }
  out += " */\n";
  const std::string id = idText(message);
  out += "#define " + message.symbolicName + ' ';
  out += message.idTypedef.empty() ? id : "((" + message.idTypedef + ')' + id + ')';
  out += "\n\n";
}

void addNumbers(std::string& out, const std::vector<NamedNumber>& numbers) {
  for (const NamedNumber& number : numbers)
    if (!number.symbol.empty())
      out += "#define " + number.symbol + ' ' + hexadecimal(number.number, 1) + '\n';
}

}  // namespace

std::string guardOf(std::string_view fileName) {
  return upperCase(identifierOf(fileName)) + "_H_";
}

std::string commentOf(std::string_view text) {
  std::string comment = "/*\n";
  addText(comment, text);
  return comment + " */\n";
}

std::string identifierOf(std::string_view fileName) {
  fileName.remove_prefix(fileName.find_last_of("/\\:") + 1);
  fileName = fileName.substr(0, fileName.rfind('.'));
  std::string identifier;
  if (std::ranges::none_of(fileName, isAsciiAlnum)) return "messages";
  for (const char c : fileName) identifier += isAsciiAlnum(c) ? c : '_';
  if (isAsciiDigit(identifier[0])) identifier.insert(0, "m");
  return identifier;
}

std::string identifierHeader(const MessageSource& source, std::string_view name) {
  const std::string guard = guardOf(name);
  std::string out = "/* Made by velmsg. Changes are lost when the messages are compiled again. */\n";
  out += "#ifndef " + guard + "\n#define " + guard + "\n\n";
  addLines(out, source.headerComments);
  addNumbers(out, source.severities);
  addNumbers(out, source.facilities);
  out += '\n';
  for (const SourceMessage& message : source.messages) addMessage(out, message);
  addLines(out, source.trailingComments);
  return out + "#endif\n";
}

}  // namespace vel::velmsg
