// Strings of JSON.
#pragma once

#include <string>
#include <string_view>

namespace vel::tools {

/// Returns the text in quotes, with escapes for what has a meaning in JSON (RFC 8259). JSON must be
/// well-formed UTF-8: a byte that belongs to no UTF-8 character becomes the character of its number, as if it
/// were Latin-1, since JSON cannot escape bytes.
std::string jsonText(std::string_view text);

}  // namespace vel::tools
