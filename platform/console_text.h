// Text at a console in UTF-8, whatever the console's code page is. A Windows console takes bytes for text in
// its own code page, so UTF-8 is passed to its wide functions instead. On POSIX systems a terminal gets the
// bytes as they are, and none of these functions does anything.
#pragma once

#include <cstddef>

#include "platform/system_error.h"

namespace vel::platform {

/// Lets std::cout, std::cerr and std::clog write to, and std::cin read from, the console in UTF-8 if they are
/// consoles, have not been redirected by the program, and narrow texts are UTF-8; see text_encoding.h. Does
/// nothing on further calls.
void useConsoleStreams();

/// Whether texts of this descriptor must pass through the functions below: it is 0, 1 or 2, a console, and
/// narrow texts are UTF-8.
bool isConsoleInUtf8(int descriptor) noexcept;
/// Writes text to a console. A character that is cut at the end of the text is kept for the next call with
/// this descriptor; what is ill-formed appears as U+FFFD.
SystemError writeConsole(int descriptor, const char* text, std::size_t size) noexcept;
/// Reads at most `capacity` bytes of what the user typed, with LF as line end, and sets `size` to the number
/// read, 0 at the end: after Ctrl+Z at the beginning of a line. Waits for a line. Fails with EINTR if Ctrl+C
/// interrupts the wait and the program goes on.
SystemError readConsole(char* buffer, std::size_t capacity, std::size_t& size) noexcept;

}  // namespace vel::platform
