#include "tools/veltrace/text_pattern.h"

#include <charconv>

#include "vel_include/vel_util.h"

namespace vel::veltrace {

bool TextPattern::parse(std::string_view pattern, std::size_t& position) {
  if (pattern.size() >= 2 && pattern.front() == '/' && pattern.back() == '/') {
    kind_ = Kind::Expression;
    if (expression_.parse(pattern.substr(1, pattern.size() - 2), position)) return true;
    ++position;
    return false;
  }
  kind_ = pattern.find_first_of("*?") == std::string_view::npos ? Kind::Whole : Kind::Wildcards;
  wildcards_ = pattern;
  return true;
}

bool TextPattern::matches(std::string_view text) const {
  switch (kind_) {
    case Kind::Whole:
      return text == wildcards_;
    case Kind::Wildcards:
      return velMatchesWildcardPattern(wildcards_.c_str(), text.data(), true);
    case Kind::Expression:
      return expression_.isIn(text);
    default:
      return true;
  }
}

namespace {

/// Parses an escape after its backslash, and adds its byte. Returns its length, 0 if it is invalid.
std::size_t addEscape(std::string_view text, std::string& bytes) {
  constexpr std::string_view kLetters = "ntr\\", kBytes = "\n\t\r\\";
  if (text.empty()) return 0;
  if (const std::size_t known = kLetters.find(text[0]); known != std::string_view::npos) {
    bytes += kBytes[known];
    return 1;
  }
  unsigned char byte = 0;
  if (text[0] != 'x' || text.size() < 3) return 0;
  const auto [end, error] = std::from_chars(text.data() + 1, text.data() + 3, byte, 16);
  if (error != std::errc() || end != text.data() + 3) return 0;
  bytes += static_cast<char>(byte);
  return 3;
}

}  // namespace

bool parseBytes(std::string_view text, std::string& bytes, std::size_t& position) {
  bytes.clear();
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (text[at] != '\\') {
      bytes += text[at];
      continue;
    }
    const std::size_t length = addEscape(text.substr(at + 1), bytes);
    if (length == 0) {
      position = at + 1;
      return false;
    }
    at += length;
  }
  return true;
}

}  // namespace vel::veltrace
