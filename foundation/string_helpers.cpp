// Searching, counting and copying characters.
#include <algorithm>
#include <cctype>
#include <cstring>

#include "vel_include/vel_helpers.h"

namespace {

bool equalInLowerCase(char a, char b) noexcept {
  return std::tolower(static_cast<unsigned char>(a)) == std::tolower(static_cast<unsigned char>(b));
}

const char* findIgnoringCase(const char* text, const char* pattern) noexcept {
  const char* expected = pattern;
  for (; *expected != '\0'; ++text) {
    if (*text == '\0') return nullptr;
    // A mismatching character is not compared with the pattern's start again. Keep.
    expected = equalInLowerCase(*text, *expected) ? expected + 1 : pattern;
  }
  return text - (expected - pattern);
}

}  // namespace

char* velStrFind(const char* text, const char* pattern, bool ignoreCase) {
  return const_cast<char*>(ignoreCase ? findIgnoringCase(text, pattern) : std::strstr(text, pattern));
}

unsigned int velStrCount(const char* text, char c) {
  return static_cast<unsigned int>(std::count(text, text + std::strlen(text), c));
}

unsigned int velStrCopyUntil(char* out, const char* text, char stop) {
  unsigned int count = 0;
  for (; text[count] != '\0' && text[count] != stop; ++count) out[count] = text[count];
  out[count] = '\0';
  return count;
}
