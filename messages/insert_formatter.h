// Expands inserts in message texts. There are two notations: that of the Windows message formatter,
// for texts of catalog libraries, and a simpler one for string tables. Both functions accept any bytes, never
// allocate memory, and run in linear time.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vel::messages {

struct FormatResult {
  bool complete;       ///< false: the text is malformed or does not fit
  std::size_t length;  ///< bytes written, without the terminating NUL; 0 when not complete
};

/// Expands a text of a catalog library (`length` single bytes without a NUL) as the Windows message
/// formatter does without a line width:
///
/// | Text | Result |
/// |---|---|
/// | %1 to %99 | that insert; "???" above 10 and for a null insert |
/// | %1!-8.3s! | the insert as printf writes it: flags, width, precision, "s" or "hs" |
/// | %1!d!, %1!*s! and the like | "???", since the insert is not a number |
/// | %0 | ends the message, without a line break |
/// | %n, line feed, carriage return, or both | CR LF |
/// | %r, %t, %b | carriage return, tab, blank |
/// | % and any other character | that character: %% % %. %! |
///
/// The number of an insert has at most two digits: "%100" is insert 10 and a "0". The insert itself is
/// copied, not expanded. A text is malformed if it ends with a single % or within a print style.
///
/// Writes at most `capacity` bytes to `out`, including the NUL. If the text is malformed or the result
/// does not fit, the result is not complete and `out` is the empty string; nothing is cut.
FormatResult expandResourceText(const char* text, std::size_t length, const char* const inserts[10],
                                char* out, std::size_t capacity) noexcept;

/// Expands a text of a string table: "%%" is a percent sign, and "%" with a number from 1 to
/// `insertCount` is that insert. A null insert, any other number and a "%" without a number give
/// "???"; characters after it that are not part of a number are copied: "%x" gives "???x", "%123" gives
/// "???". Line breaks are copied as they are.
///
/// The result is cut to `maxLength` bytes; `out` has room for one byte more, the NUL. Returns the number of
/// bytes written without the NUL.
std::size_t expandTableText(const char* text, const char* const* inserts, std::uint32_t insertCount,
                            char* out, std::size_t maxLength) noexcept;

}  // namespace vel::messages
