// What becomes of a process that the tests have only the identifier of.
#pragma once

namespace vel::test {

/// Waits until the process no longer runs; false when it still does after 60 seconds. On POSIX systems one
/// that has ended and only waits to be noticed by its parent no longer runs.
bool waitForEnd(unsigned int processId);

/// Whether it runs now.
bool isRunning(unsigned int processId);

}  // namespace vel::test
