#include "tools/velmsg/po_charset.h"

#include <algorithm>

#include "tools/velmsg/source_encoding.h"

namespace vel::velmsg {
namespace {

VelClCCSID codepageOf(const std::string& charset) {
  constexpr int kAscii = 367;
  if (charset.empty() || charset == "CHARSET") return VelClCCSID(VelClCCSID::CCSID_UTF8);
  const VelClCCSID codepage = VelClCCSID::fromName(charset.c_str());
  return codepage.getAsInt() == kAscii ? VelClCCSID(VelClCCSID::CCSID_UTF8) : codepage;
}

std::string replaceAll(std::string_view text, std::string_view from, char to) {
  std::string result;
  for (;;) {
    const std::size_t found = text.find(from);
    result += text.substr(0, found);
    if (found == std::string_view::npos) return result;
    result += to;
    text.remove_prefix(found + from.size());
  }
}

}  // namespace

// Code pages of Japan and Korea may have a currency sign for the backslash and an overline for the tilde. In
// programs and .po files these bytes are ASCII all the same.
PoCharset::PoCharset(const std::string& name) : codepage_(codepageOf(name)) {
  if (!isKnown() || codepage_ == VelClCCSID(VelClCCSID::CCSID_UTF8)) return;
  for (const char c : {'\\', '~'}) {
    Diagnostics ignored;
    const std::string character = convertToUtf8({&c, 1}, codepage_, 0, ignored);
    if (ignored.empty() && character != std::string(1, c)) variants_.emplace_back(character, c);
  }
}

std::string PoCharset::decodeFile(std::string_view bytes, std::size_t file, Diagnostics& diagnostics) const {
  std::string text = toUtf8(bytes, codepage_, file, diagnostics);
  for (const auto& [variant, ascii] : variants_) text = replaceAll(text, variant, ascii);
  return text;
}

std::string PoCharset::decode(std::string_view bytes, std::size_t file, Diagnostics& diagnostics) const {
  std::string text = convertToUtf8(bytes, codepage_, file, diagnostics);
  for (const auto& [variant, ascii] : variants_) text = replaceAll(text, variant, ascii);
  return text;
}

}  // namespace vel::velmsg
