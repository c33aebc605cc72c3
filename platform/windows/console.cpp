// Waits for one key at the console. The runtime's _getch sets and restores the console's mode itself.
#include <conio.h>

#include "platform/console.h"

namespace vel::platform {

bool waitForConsoleKey() noexcept {
  // Keys without a character, such as function keys, send 0 or 0xE0 followed by a second code, which belongs
  // to the same key.
  const int key = _getch();
  if (key == 0 || key == 0xE0) _getch();
  return true;
}

}  // namespace vel::platform
