// Parses CCSIDs as users write them: "37", "ccsid1208", or a name that the library knows, such as "latin1".
// "CP850" is a number only if it is not a name: "CP1252" is the name of 5348.
#include "tools/ccsids.h"

#include <charconv>
#include <string_view>

#include "base/ascii.h"

namespace vel::tools {

namespace {

/// Returns the text without a prefix, which is given in lower case and compared ignoring case. A text that
/// does not begin with it is returned unchanged.
std::string_view removePrefixIgnoringCase(std::string_view prefix, std::string_view text) {
  if (text.size() < prefix.size()) return text;
  for (std::size_t i = 0; i < prefix.size(); ++i)
    if (toAsciiLower(text[i]) != prefix[i]) return text;
  return text.substr(prefix.size());
}

/// Parses decimal digits only. Returns -1 for anything else.
int parseDigits(std::string_view digits) {
  int number = -1;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  return error == std::errc() && end == digits.data() + digits.size() ? number : -1;
}

}  // namespace

bool isKnown(const VelClCCSID& ccsid) {
  return ccsid.isValid() || ccsid.getPreferredName() != nullptr;
}

bool parseCcsid(const char* text, VelClCCSID& ccsid) {
  const std::string_view digits = removePrefixIgnoringCase("ccsid", text);
  int number = parseDigits(digits);
  if (number < 0) number = static_cast<int>(velGetCCSIDOfName(text));
  if (number == 0) number = parseDigits(removePrefixIgnoringCase("cp", digits));
  ccsid = VelClCCSID(number);
  return number > 0 && isKnown(ccsid);
}

}  // namespace vel::tools
