// Puts variables into message texts. Two notations exist: that of the system's message
// formatter, for texts of catalog libraries, and the plainer one of built-in string tables.
// Both functions take any bytes, never allocate and run in linear time.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vel::messages {

struct FormatResult {
  bool complete;       ///< false: the text is malformed or does not fit
  std::size_t length;  ///< characters written, without the terminator; 0 when not complete
};

/// Expands a catalog library's text (single bytes, up to `length` or its first zero) the way the
/// system's formatter does without a line width:
///
/// | Text | Result |
/// |---|---|
/// | %1 to %99 | that insert; "???" above 10 and for a null insert |
/// | %1!-8.3s! | the insert as printf writes it: flags, width, precision, "s" or "hs" |
/// | %1!d!, %1!*s! and the like | "???", since they would read numbers or addresses |
/// | %0 | ends the message, without a line break |
/// | %n, line feed, carriage return, or both | CR LF |
/// | %r, %t, %b | carriage return, tab, blank |
/// | % and any other character | that character: %% % %. %! |
///
/// An insert has at most two digits ("%100" is insert 10 and a "0") and is copied as it is.
/// Malformed are a single % at the end and a print style without its second "!".
///
/// `out` takes up to `capacity` bytes including the terminator. A longer result is never cut: it
/// fails as a whole and leaves an empty text.
FormatResult expandResourceText(const char* text, std::size_t length, const char* const inserts[10],
                                char* out, std::size_t capacity) noexcept;

/// Substitutes variables into a string table's text: "%%" is a percent sign, "%" and a number from 1
/// to `variableCount` that variable. "%" and any other number, nothing or another character gives
/// "???", as does a null variable; the character behind the "%" is then copied, unless it is a digit:
/// "%x" gives "???x", "%123" gives "???". Line breaks stay as they are.
///
/// The result is cut to `maxLength` characters; `out` holds one byte more, for the terminator.
/// Returns the number of characters written.
std::size_t expandTableText(const char* text, const char* const* variables, std::uint32_t variableCount,
                            char* out, std::size_t maxLength) noexcept;

}  // namespace vel::messages
