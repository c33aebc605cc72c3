// The languages of the user and of the system, and conversion to the process's ANSI code page.
#include <cstring>
#include <iterator>

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include "platform/languages.h"
#include "platform/windows/native_text.h"

namespace vel::platform {

namespace {

/// Writes a name of the user's locale that consists of letters of ASCII.
bool isoName(LCTYPE type, char* out, std::size_t capacity) noexcept {
  wchar_t name[16];
  const int size = GetLocaleInfoW(LOCALE_USER_DEFAULT, type, name, static_cast<int>(std::size(name)));
  return size > 0 && narrowText({name, static_cast<std::size_t>(size) - 1}, textCodePage(), out, capacity) ==
                         ERROR_SUCCESS;
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
  if (!isoName(LOCALE_SISO639LANGNAME, out, capacity)) return false;
  const std::size_t end = std::strlen(out);
  if (!isoName(LOCALE_SISO3166CTRYNAME, territory, sizeof territory)) return true;
  if (end + 1 + std::strlen(territory) >= capacity) return false;
  out[end] = '-';
  std::strcpy(out + end + 1, territory);
  return true;
}

bool ansiIsUtf8() noexcept {
  return textCodePage() == CP_UTF8;
}

std::size_t utf16ToAnsi(const char16_t* text, std::size_t length, char* out, std::size_t capacity) noexcept {
  return readableText({reinterpret_cast<const wchar_t*>(text), length}, textCodePage(), Similar::Accept, out,
                      capacity);
}

}  // namespace vel::platform
