// The parts of the model of message sources that need no parsing.
#include "tools/velmsg/message_source.h"

#include <algorithm>

namespace vel::velmsg {

namespace {

/// Whether the last line ends with the escape "%0"; "%%0" is not one.
bool endsMessage(std::string_view text) {
  if (!text.ends_with("%0\n")) return false;
  text.remove_suffix(2);
  const std::size_t before = text.find_last_not_of('%');
  return (text.size() - (before + 1)) % 2 == 1;
}

}  // namespace

MessageSource emptySource() {
  MessageSource source;
  source.severities = {{"Success", 0, {}, false, {}},
                       {"Informational", 1, {}, false, {}},
                       {"Warning", 2, {}, false, {}},
                       {"Error", 3, {}, false, {}}};
  source.facilities = {{"System", 0xFF, {}, false, {}}, {"Application", 0xFFF, {}, false, {}}};
  source.languages = {{"English", 0x409, "MSG00409", false, {}}};
  return source;
}

std::string storedText(std::string_view text) {
  if (endsMessage(text)) text.remove_suffix(1);
  std::string stored;
  stored.reserve(text.size() + 16);
  while (!text.empty()) {
    const std::size_t length = std::min(text.find('\n'), text.size());
    stored.append(text.substr(0, length));
    if (length < text.size()) stored += "\r\n";
    text.remove_prefix(std::min(length + 1, text.size()));
  }
  return stored;
}

std::string positionText(const MessageSource& source, const SourcePosition& position) {
  std::string text = source.files.at(position.file);
  if (position.line != 0) text += ':' + std::to_string(position.line) + ':' + std::to_string(position.column);
  return text;
}

}  // namespace vel::velmsg
