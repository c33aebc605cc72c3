// Matching a whole text against "*" and "?". Finding a pattern within a text is string_search.cpp's work.
#include <cctype>

#include "vel_include/vel_util.h"

namespace {

char folded(char c) {
  return static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
}

bool matchesOneByte(char patternByte, char textByte, bool caseSensitive) {
  if (patternByte == '?' || patternByte == textByte) return true;
  return !caseSensitive && folded(patternByte) == folded(textByte);
}

}  // namespace

// When bytes differ, only the last "*" passed needs to give way by one byte: whatever an earlier
// one could skip, the last one can skip as well. That bounds the steps by the product of the lengths.
bool velMatchesWildcardPattern(const char* pattern, const char* text, bool caseSensitive) {
  if (pattern == nullptr) pattern = "";
  if (text == nullptr) text = "";
  const char* behindStar = nullptr;
  const char* resume = nullptr;
  while (*text != '\0') {
    if (*pattern == '*') {
      behindStar = ++pattern;
      resume = text;
      if (*behindStar == '\0') return true;
    } else if (*pattern != '\0' && matchesOneByte(*pattern, *text, caseSensitive)) {
      ++pattern;
      ++text;
    } else if (behindStar != nullptr) {
      pattern = behindStar;
      text = ++resume;
    } else {
      return false;
    }
  }
  while (*pattern == '*') ++pattern;
  return *pattern == '\0';
}
