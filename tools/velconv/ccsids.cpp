// Parses CCSIDs as users write them: "37", "CP850", "ccsid1208", or a name that the library knows, such as
// "UTF-8". Lists 0 and all valid CCSIDs by trying all numbers, since the library's table is not public.
#include "tools/velconv/ccsids.h"

#include <charconv>
#include <ostream>
#include <string>
#include <string_view>

#include "base/ascii.h"
#include "vel_include/vel_strict_conversion.h"

namespace vel::velconv {

namespace {

constexpr int kMaxCcsid = 0xFFFF;

constexpr const char* nameOf(VelClConverterABase::VelEnRoute route) {
  constexpr const char* kNames[] = {"none", "algorithm", "table", "icu", "system"};
  return kNames[static_cast<int>(route)];
}

std::string propertiesOf(const VelClCCSID& ccsid) {
  std::string properties;
  const auto add = [&properties](bool has, const char* name) {
    if (!has) return;
    if (!properties.empty()) properties += ' ';
    properties += name;
  };
  add(ccsid.isASCII(), "ASCII");
  add(ccsid.isEBCDIC(), "EBCDIC");
  add(ccsid.isDBCS(), "DBCS");
  add(ccsid.isSBCS(), "SBCS");
  add(ccsid.isUCS2(), "UCS-2");
  return properties.empty() ? "-" : properties;
}

/// Returns the text without a prefix, which is given in lower case and compared ignoring case. A text that
/// does not begin with it is returned unchanged.
std::string_view removePrefixIgnoringCase(std::string_view prefix, std::string_view text) {
  if (text.size() < prefix.size()) return text;
  for (std::size_t i = 0; i < prefix.size(); ++i)
    if (toAsciiLower(text[i]) != prefix[i]) return text;
  return text.substr(prefix.size());
}

}  // namespace

bool parseCcsid(const char* text, VelClCCSID& ccsid) {
  const std::string_view digits = removePrefixIgnoringCase("cp", removePrefixIgnoringCase("ccsid", text));
  int number = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  const bool isNumber = error == std::errc() && end == digits.data() + digits.size() && number >= 0;
  ccsid = isNumber ? VelClCCSID(number) : VelClCCSID(text);
  // VelClCCSID parses "37x" as 37; velconv rejects it.
  return ccsid.isValid() && (isNumber || text[0] < '0' || text[0] > '9');
}

void listCcsids(std::ostream& out) {
  // 0 has a row in the library's table, so it is listed, although isValid() is false for it.
  for (int number = 0; number <= kMaxCcsid; ++number) {
    const VelClCCSID ccsid(number);
    if (number != 0 && !ccsid.isValid()) continue;
    out << number << '\t' << ccsid.getName() << '\t' << propertiesOf(ccsid) << '\t'
        << nameOf(VelClStrictConversion::getRouteToUcs2(ccsid)) << '\t'
        << nameOf(VelClStrictConversion::getRouteFromUcs2(ccsid)) << '\n';
  }
}

}  // namespace vel::velconv
