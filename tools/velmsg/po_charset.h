// The charset of a .po file, as its header states it.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/velmsg/message_source.h"

namespace vel::velmsg {

/// Decodes bytes of a charset that contains ASCII.
class PoCharset {
 public:
  PoCharset() : PoCharset("") {}
  /// "" is UTF-8, and so is "CHARSET", the placeholder of templates.
  explicit PoCharset(const std::string& name);

  bool isKnown() const { return codepage_.getAsInt() != 0; }
  /// Returns UTF-8. Reports ill-formed sequences.
  std::string decodeFile(std::string_view bytes, std::size_t file, Diagnostics& diagnostics) const;
  /// Same without looking for a byte order mark.
  std::string decode(std::string_view bytes, std::size_t file, Diagnostics& diagnostics) const;

 private:
  VelClCCSID codepage_;
  /// What the code page has instead of ASCII characters, and those.
  std::vector<std::pair<std::string, char>> variants_;
};

}  // namespace vel::velmsg
