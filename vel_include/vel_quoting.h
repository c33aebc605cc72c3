// Quotes a text, so that a command line or a shell passes exactly this text to a program as one argument.
#ifndef VEL_QUOTING_H_
#define VEL_QUOTING_H_

#include <stddef.h>

#include "vel_export.h"

#if defined(VEL_HAS_CLASSES)
#include <string>
#include <string_view>
#endif

/// Quote the `size` bytes of `text`, which become exactly one argument, also if they are empty. Null
/// counts as "".
///
/// The result and a terminating NUL are written to `out`, which has room for `capacity` bytes. The functions
/// return the length of the result without the NUL. If the length is not less than `capacity`, `out` is too
/// small and receives "", because part of a quoted text would have another meaning; with capacity 0, `out` is
/// not used and may be null. 4 * size + 3 bytes always suffice. A text that contains a NUL byte cannot be an
/// argument: the result is "" and the length 0, which no other text has. `out` must not overlap `text`.
///
/// velQuoteForAddArgument is for VelClNewProcessABase::addArgument, on every system. That function encloses
/// texts with blanks itself, so its texts are not those of a whole command line.
///
/// velQuoteForWindows is for command lines that CommandLineToArgvW or the C runtime of a Windows program
/// splits. The result does not depend on which of them does. It is not for the name of the program, which has
/// rules of its own, nor for command lines of cmd.exe, which expands `%` even within quotes.
///
/// velQuoteForShell is for POSIX shells. The result is in single quotes, so every byte is ordinary.
VEL_C_API size_t velQuoteForAddArgument(const char* text, size_t size, char* out, size_t capacity);
VEL_C_API size_t velQuoteForWindows(const char* text, size_t size, char* out, size_t capacity);
VEL_C_API size_t velQuoteForShell(const char* text, size_t size, char* out, size_t capacity);

#if defined(VEL_HAS_CLASSES)

/// Return the result of one of the functions above as a string; "" if `text` contains a NUL byte.
inline std::string velQuoted(std::string_view text, size_t (*quote)(const char*, size_t, char*, size_t)) {
  std::string result(quote(text.data(), text.size(), nullptr, 0), '\0');
  quote(text.data(), text.size(), result.data(), result.size() + 1);
  return result;
}
inline std::string velQuotedForAddArgument(std::string_view text) {
  return velQuoted(text, velQuoteForAddArgument);
}
inline std::string velQuotedForWindows(std::string_view text) {
  return velQuoted(text, velQuoteForWindows);
}
inline std::string velQuotedForShell(std::string_view text) {
  return velQuoted(text, velQuoteForShell);
}

#endif

#endif
