// Matches a whole text against a pattern with "*" and "?". Finding a pattern within a text is
// string_search.cpp's work.
#include <cctype>
#include <cstddef>
#include <cstring>

#include "vel_include/vel_util.h"

namespace {

char toUpper(char c) {
  return static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
}

bool matchesOneByte(char patternByte, char textByte, bool caseSensitive) {
  if (patternByte == '?' || patternByte == textByte) return true;
  if (caseSensitive) return false;
  // Two different ASCII characters have the same upper case only if they are the two cases of a letter, which
  // differ in bit 0x20, in every locale. This avoids two calls of toupper for nearly every mismatch.
  const int difference = patternByte ^ textByte;
  const bool areAscii = ((patternByte | textByte) & 0x80) == 0;
  return (!areAscii || difference == 0x20) && toUpper(patternByte) == toUpper(textByte);
}

/// Whether the end of a text matches a pattern without "*". After the last "*" of a pattern only this place
/// is possible, so no search is needed.
bool matchesAtEnd(const char* pattern, const char* text, bool caseSensitive) {
  const std::size_t patternLength = std::strlen(pattern);
  const std::size_t textLength = std::strlen(text);
  if (patternLength > textLength) return false;
  text += textLength - patternLength;
  for (std::size_t i = patternLength; i > 0; --i)
    if (!matchesOneByte(pattern[i - 1], text[i - 1], caseSensitive)) return false;
  return true;
}

}  // namespace

// Greedy matching with one point of return instead of recursion. When bytes differ, only the last "*" passed
// has to match one byte more: whatever an earlier "*" could match in addition, the last one can match as
// well. That bounds the steps by the product of the lengths, where a recursive matcher needs exponential
// time.
//
//   pattern "*ab*"  text "aabc"   "*" = "",  'a' = 'a', 'b' != 'a'
//                                 "*" = "a", 'a' = 'a', 'b' = 'b', "*" = "c"
bool velMatchesWildcardPattern(const char* pattern, const char* text, bool caseSensitive) {
  if (pattern == nullptr) pattern = "";
  if (text == nullptr) text = "";
  const char* afterStar = nullptr;
  const char* starText = nullptr;
  while (*text != '\0') {
    if (*pattern == '*') {
      afterStar = ++pattern;
      starText = text;
      if (*pattern == '\0') return true;
      if (std::strchr(pattern, '*') == nullptr) return matchesAtEnd(pattern, text, caseSensitive);
    } else if (*pattern == *text || (*pattern != '\0' && matchesOneByte(*pattern, *text, caseSensitive))) {
      ++pattern;
      ++text;
    } else if (afterStar != nullptr) {
      pattern = afterStar;
      text = ++starText;
    } else {
      return false;
    }
  }
  while (*pattern == '*') ++pattern;
  return *pattern == '\0';
}
