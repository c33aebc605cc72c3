// Random text for conversions. It does not repeat, because a branch predictor would learn a text that does.
#pragma once

#include <algorithm>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace bench {

/// Words with letters from `first` to `last`; a share of the words has letters from a to z instead.
struct Script {
  const char* name;
  char32_t first;
  char32_t last;
  unsigned int asciiPercent;
  unsigned int longestWord;
};

inline constexpr Script kScripts[] = {{"ASCII", 'a', 'z', 0, 10},
                                      {"Latin", 0xE0, 0xFF, 85, 10},
                                      {"Cyrillic", 0x430, 0x44F, 0, 10},
                                      {"CJK", 0x4E00, 0x9FA5, 0, 20},
                                      {"emoji", 0x1F300, 0x1F64F, 0, 10}};

/// Numbers from 0 to `last`.
class Random {
 public:
  std::uint32_t upTo(std::uint32_t last) { return static_cast<std::uint32_t>(engine_()) % (last + 1); }

 private:
  std::mt19937 engine_{2024};
};

/// Returns a text of this number of UTF-16 units. If its last unit would be half of a surrogate pair, it is a
/// blank.
inline std::u16string makeText(const Script& script, std::size_t units) {
  Random random;
  std::u16string text;
  while (text.size() < units) {
    for (std::uint32_t letters = 1 + random.upTo(script.longestWord - 1); letters > 0; --letters) {
      const bool isAscii = random.upTo(99) < script.asciiPercent;
      const char32_t c =
          isAscii ? U'a' + random.upTo(25) : script.first + random.upTo(script.last - script.first);
      if (c >= 0x10000) text += static_cast<char16_t>(0xD7C0 + (c >> 10));
      text += static_cast<char16_t>(c < 0x10000 ? c : 0xDC00 + (c & 0x3FF));
    }
    text += u' ';
  }
  text.resize(units);
  if ((text.back() & 0xFC00) == 0xD800) text.back() = u' ';
  return text;
}

/// Mixed single and double bytes: runs of up to 30 pairs, the first ones of `pairs` more often than the
/// others, and between them words of the page's letters, shifted on an EBCDIC page. Whole characters.
inline std::string makeMixedText(const std::vector<std::uint16_t>& pairs, bool isEbcdic, std::size_t size) {
  Random random;
  std::string text;
  while (text.size() + 100 < size) {
    if (isEbcdic) text += '\x0E';
    for (unsigned int run = 1 + random.upTo(29); run > 0; --run) {
      const double rank = random.upTo(999999) / 1e6;
      const std::uint16_t pair =
          pairs[static_cast<std::size_t>(rank * rank * static_cast<double>(pairs.size()))];
      text += {static_cast<char>(pair >> 8), static_cast<char>(pair & 0xFF)};
    }
    if (isEbcdic) text += '\x0F';
    for (unsigned int run = 1 + random.upTo(11); run > 0; --run)
      text += static_cast<char>((isEbcdic ? 0xC1 : 'A') + random.upTo(8));
  }
  return text.append(size - std::min(size, text.size()), isEbcdic ? '\x40' : ' ');
}

}  // namespace bench
