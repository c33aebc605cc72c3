// The console's keyboard.
#pragma once

namespace vel::platform {

/// Waits for one key at the console, without echo and without Enter, and discards it with everything that the
/// key sends. The terminal's mode is restored afterwards, also when a signal ends or stops the process
/// meanwhile. Returns whether it waited: Windows returns true immediately if the process does not have a
/// console; on POSIX the console is standard input, and the answer is false, with nothing read, when that is
/// not a terminal.
bool waitForConsoleKey() noexcept;

}  // namespace vel::platform
