#include "tools/json_text.h"

#include "base/digits.h"
#include "base/utf.h"

namespace vel::tools {
namespace {

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

}  // namespace

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

}  // namespace vel::tools
