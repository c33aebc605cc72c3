// The user's language, and texts in the process's ANSI code page.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vel::platform {

/// Return a LANGID. POSIX: from LC_ALL, LC_MESSAGES, LANG (user) or LANG (system); 1033 when they name none.
std::uint32_t userLanguage() noexcept;
std::uint32_t systemLanguage() noexcept;
/// Writes the user's language by ISO codes, "de-DE" or "de_DE", NUL-terminated; the territory only where the
/// settings name one. Returns whether they name a language and the tag fits.
bool userLanguageTag(char* out, std::size_t capacity) noexcept;
/// Whether the process's ANSI code page is UTF-8.
bool ansiIsUtf8() noexcept;
/// Converts to the process's ANSI code page, with "?" for unmappable characters. Returns the number of
/// bytes written, at most `capacity`, never part of a character and without terminator. Not for UTF-8.
std::size_t utf16ToAnsi(const char16_t* text, std::size_t length, char* out, std::size_t capacity) noexcept;

}  // namespace vel::platform
