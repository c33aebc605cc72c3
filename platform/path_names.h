// What names of files are to the system: their style, encoding, comparison, and the directory that they start
// from. All texts are UTF-8 of any length; on POSIX systems they are bytes that nothing is changed in.
#pragma once

#include <cstddef>
#include <string_view>

#include "platform/system_error.h"

namespace vel::platform {

/// Whether the system's own names are in backslash style.
bool usesBackslashNames() noexcept;

/// Returns the position of the first byte that cannot be in a name of the system, or the size of the text.
std::size_t findUnusableByte(std::string_view name) noexcept;

/// Compares two components of a backslash name: where such names are the system's own, as the system does,
/// elsewhere as matchSpelling finds them. Bytes that are not UTF-8 are equal only to themselves. The result
/// is negative, 0 or positive.
int compareBackslashNames(std::string_view a, std::string_view b) noexcept;

/// Writes the current directory of the process in the system's style, not terminated, and sets `size` to its
/// size. Where drives have directories of their own, `drive` selects one, unless it is NUL. If `size` exceeds
/// the capacity, nothing useful was written, and `size` is a capacity to try next. Returns the system's own
/// error, or 0.
NativeError workingDirectory(char drive, char* out, std::size_t capacity, std::size_t& size) noexcept;

/// Convert a name to the encoding of the process's narrow texts, and from it. They write no terminator, set
/// `size` to the number of bytes written, and fail with ERANGE if the result does not fit, EILSEQ if a
/// character has no counterpart.
SystemError narrowName(std::string_view name, char* out, std::size_t capacity, std::size_t& size) noexcept;
SystemError utf8Name(std::string_view narrow, char* out, std::size_t capacity, std::size_t& size) noexcept;

}  // namespace vel::platform
