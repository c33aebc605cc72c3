// Determines the user's language and code page from the environment and the locale, and converts text to it.
#include <langinfo.h>
#include <strings.h>

#include <climits>
#include <cstdlib>
#include <cstring>
#include <cwchar>

#include "base/language_names.h"
#include "base/utf.h"
#include "platform/languages.h"
#include "platform/posix/locale_variables.h"

namespace vel::platform {

namespace {

constexpr std::uint32_t kEnglishUnitedStates = 1033;

std::uint32_t languageOrDefault(const char* localeName) noexcept {
  const std::uint32_t language = languageIdOfLocaleName(localeName);
  return language == 0 ? kEnglishUnitedStates : language;
}

/// Compares a code set's name; an "@" and what follows it, such as "@euro", are ignored.
bool isUtf8Name(const char* codeSet) noexcept {
  const std::size_t length = std::strcspn(codeSet, "@");
  return (length == 5 && strncasecmp(codeSet, "UTF-8", length) == 0) ||
         (length == 4 && strncasecmp(codeSet, "UTF8", length) == 0);
}

/// Consumes the first character, or an unpaired surrogate, and returns it.
wchar_t consumeCharacter(const char16_t*& text, const char16_t* end) noexcept {
  const char16_t* const units = text;
  const std::size_t count = unitsOfFirstCharacter(text, static_cast<std::size_t>(end - text));
  text += count;
  return static_cast<wchar_t>(count == 2 ? decodeSurrogatePair(units[0], units[1]) : char32_t{units[0]});
}

/// Encodes one character; "?" if it is unmappable. A new shift state each time, because locales have
/// stateless encodings in practice.
std::size_t encode(wchar_t character, char* out) noexcept {
  std::mbstate_t state{};
  const std::size_t count = std::wcrtomb(out, character, &state);
  if (count != static_cast<std::size_t>(-1)) return count;
  *out = '?';
  return 1;
}

}  // namespace

std::uint32_t userLanguage() noexcept {
  return languageOrDefault(localeNameFor("LC_MESSAGES"));
}

std::uint32_t systemLanguage() noexcept {
  return languageOrDefault(std::getenv("LANG"));
}

bool userLanguageTag(char* out, std::size_t capacity) noexcept {
  const char* const name = localeNameFor("LC_MESSAGES");
  const std::size_t length = std::strcspn(name, ".@");
  // "C" and "POSIX" are not languages; ISO codes have two or three letters.
  const std::size_t languageLength = std::strcspn(name, "_-.@");
  if (languageLength < 2 || languageLength > 3 || length >= capacity) return false;
  std::memcpy(out, name, length);
  out[length] = '\0';
  return true;
}

bool ansiIsUtf8() noexcept {
  if (isUtf8Name(nl_langinfo(CODESET))) return true;
  // setlocale() fails for a locale that is not installed, but the terminal uses its encoding all the same.
  const char* const codeSet = std::strchr(localeNameFor("LC_CTYPE"), '.');
  return codeSet != nullptr && isUtf8Name(codeSet + 1);
}

std::size_t utf16ToAnsi(const char16_t* text, std::size_t length, char* out, std::size_t capacity) noexcept {
  const char16_t* const end = text + length;
  std::size_t written = 0;
  while (text != end) {
    char bytes[MB_LEN_MAX];
    const std::size_t count = encode(consumeCharacter(text, end), bytes);
    // Stop before a character that does not fit: part of one would be ill-formed.
    if (count > capacity - written) break;
    std::memcpy(out + written, bytes, count);
    written += count;
  }
  return written;
}

}  // namespace vel::platform
