// Compares names with wildcards, character by character.
#include "filesys/name_filter.h"

#include "base/utf.h"
#include "platform/named_files.h"

namespace vel::filesys {

namespace {

/// Added to a byte that is not well-formed; above all characters.
constexpr char32_t kRawByte = 0x110000;

char32_t decode(const unsigned char* bytes, std::size_t size) noexcept {
  if (size == 1) return *bytes;
  char32_t character = *bytes & (0x7FU >> size);
  for (std::size_t i = 1; i < size; ++i) character = character << 6 | (bytes[i] & 0x3FU);
  return character;
}

Vector<char32_t> foldedCharacters(std::string_view text) {
  Vector<char32_t> characters;
  characters.reserve(text.size());
  while (!text.empty()) {
    const auto* const bytes = reinterpret_cast<const unsigned char*>(text.data());
    const Utf8Sequence sequence = utf8SequenceAt(bytes, text.size());
    const std::size_t size = sequence.isValid ? sequence.size : 1;
    characters.push_back(sequence.isValid ? platform::foldedForNames(decode(bytes, size))
                                          : kRawByte + *bytes);
    text.remove_prefix(size);
  }
  return characters;
}

}  // namespace

NameFilter::NameFilter(std::string_view pattern) : matchesAll_(false), pattern_(foldedCharacters(pattern)) {}

bool NameFilter::matches(std::string_view name) const {
  return matchesAll_ || matches(foldedCharacters(name));
}

// Only the last "*" is ever extended: what matched before it stays matched.
bool NameFilter::matches(const Vector<char32_t>& name) const noexcept {
  constexpr std::size_t kNone = static_cast<std::size_t>(-1);
  std::size_t at = 0, in = 0, star = kNone, starAt = 0;
  while (at < name.size()) {
    if (in < pattern_.size() && pattern_[in] == U'*') {
      star = in++;
      starAt = at;
    } else if (in < pattern_.size() && (pattern_[in] == U'?' || pattern_[in] == name[at])) {
      ++in;
      ++at;
    } else if (star != kNone) {
      in = star + 1;
      at = ++starAt;
    } else {
      return false;
    }
  }
  while (in < pattern_.size() && pattern_[in] == U'*') ++in;
  return in == pattern_.size();
}

}  // namespace vel::filesys
