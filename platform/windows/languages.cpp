// The languages of the user and of the system, and conversion to the process's ANSI code page.
#include <cstring>

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include "base/utf.h"
#include "platform/languages.h"

namespace vel::platform {

namespace {

/// Encodes one character of one or two units; "?" if it is unmappable. The default character of a code page
/// need not be "?", so the system tells whether it was used.
std::size_t encode(const char16_t* character, std::size_t units, char (&out)[8]) noexcept {
  wchar_t text[2];
  std::memcpy(text, character, units * sizeof(wchar_t));
  BOOL isUnmappable = FALSE;
  const int count =
      WideCharToMultiByte(CP_ACP, 0, text, static_cast<int>(units), out, sizeof out, nullptr, &isUnmappable);
  if (count > 0 && isUnmappable == FALSE) return static_cast<std::size_t>(count);
  out[0] = '?';
  return 1;
}

}  // namespace

std::uint32_t userLanguage() noexcept {
  return GetUserDefaultLangID();
}

std::uint32_t systemLanguage() noexcept {
  return GetSystemDefaultLangID();
}

bool userLanguageTag(char* out, std::size_t capacity) noexcept {
  char territory[16];
  const int language =
      GetLocaleInfoA(LOCALE_USER_DEFAULT, LOCALE_SISO639LANGNAME, out, static_cast<int>(capacity));
  if (language == 0) return false;
  const auto end = static_cast<std::size_t>(language) - 1;
  if (GetLocaleInfoA(LOCALE_USER_DEFAULT, LOCALE_SISO3166CTRYNAME, territory, sizeof territory) == 0)
    return true;
  if (end + 1 + std::strlen(territory) >= capacity) return false;
  out[end] = '-';
  std::strcpy(out + end + 1, territory);
  return true;
}

bool ansiIsUtf8() noexcept {
  return GetACP() == CP_UTF8;
}

std::size_t utf16ToAnsi(const char16_t* text, std::size_t length, char* out, std::size_t capacity) noexcept {
  const char16_t* const end = text + length;
  std::size_t written = 0;
  while (text != end) {
    const std::size_t units = unitsOfFirstCharacter(text, static_cast<std::size_t>(end - text));
    char bytes[8];
    const std::size_t count = encode(text, units, bytes);
    // Stop before a character that does not fit: part of one would be ill-formed.
    if (count > capacity - written) break;
    std::memcpy(out + written, bytes, count);
    written += count;
    text += units;
  }
  return written;
}

}  // namespace vel::platform
