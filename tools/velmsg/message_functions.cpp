#include "tools/velmsg/message_functions.h"

#include <algorithm>
#include <set>

#include "base/ascii.h"
#include "tools/velmsg/identifier_header.h"
#include "tools/velmsg/source_encoding.h"
#include "tools/velmsg/source_text.h"
#include "tools/velmsg/texts.h"
#include "vel_include/vel_messages.h"

namespace vel::velmsg {
namespace {

constexpr bool isLower(char c) {
  return c >= 'a' && c <= 'z';
}

/// Appends a word of a name. One in capitals gets small letters, any other keeps those that it has.
void addWord(std::string& name, std::string_view word) {
  const bool isMixed = std::ranges::any_of(word, isLower);
  for (const char& c : word) {
    const bool isFirst = &c == word.data();
    const bool isUpper = isFirst ? !name.empty() : isMixed && toAsciiUpper(c) == c;
    name += isUpper ? toAsciiUpper(c) : toAsciiLower(c);
  }
}

/// The last word keeps the name from being a keyword or a macro, such as the symbolic name itself.
std::string functionName(std::string_view symbol) {
  std::string name;
  while (!symbol.empty()) {
    const auto end =
        static_cast<std::size_t>(std::ranges::find_if_not(symbol, isAsciiAlnum) - symbol.begin());
    addWord(name, symbol.substr(0, end));
    symbol.remove_prefix(std::min(end + 1, symbol.size()));
  }
  if (name.empty() || isAsciiDigit(name[0])) name.insert(0, "m");
  return name + "Message";
}

unsigned lastInsert(const SourceMessage& message) {
  unsigned last = 0;
  for (const SourceText& text : message.texts) {
    const SourceInserts inserts = readSourceText(text.text).inserts;
    if (!inserts.empty()) last = std::max(last, inserts.rbegin()->first);
  }
  return std::min<unsigned>(last, VEL_MAX_MESSAGE_VARIABLES);
}

std::string functionOf(const SourceMessage& message, const std::string& name) {
  std::string parameters, arguments;
  for (unsigned i = 1; i <= lastInsert(message); ++i) {
    const std::string insert = "insert" + std::to_string(i);
    parameters += ", const std::string& " + insert;
    arguments += ", " + insert + ".c_str()";
  }
  std::string out = message.texts.empty() ? "" : commentOf(message.texts.front().text);
  out += "inline VelClMessage " + name + "(const VelClMessageCatalog& catalog" + parameters + ") {\n";
  return out + "  return VelClMessage(catalog, " + std::to_string(message.id) + "UL" + arguments +
         ");\n}\n\n";
}

}  // namespace

std::string messageFunctions(const MessageSource& source, std::string_view name, Diagnostics& diagnostics) {
  const std::string space = identifierOf(name), guard = guardOf(name);
  std::string out = "// Made by velmsg. Changes are lost when the messages are compiled again.\n#ifndef " +
                    guard + "\n#define " + guard +
                    "\n\n#include <vel_messages.h>\n\n#include <string>\n\nnamespace " + space + " {\n\n";
  std::set<std::string> names;
  for (const SourceMessage& message : source.messages) {
    if (message.symbolicName.empty()) continue;
    const std::string function = functionName(message.symbolicName);
    if (!names.insert(function).second)
      addDiagnostic(diagnostics, {message.symbolPosition, kFunctionTwice, function});
    out += functionOf(message, function);
  }
  return out + "}  // namespace " + space + "\n#endif\n";
}

}  // namespace vel::velmsg
