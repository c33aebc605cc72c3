// One key from the console.
#include <conio.h>

#include "platform/console.h"

namespace vel::platform {

bool waitForConsoleKey() noexcept {
  // Keys without a character send one of these and a second code.
  const int key = _getch();
  if (key == 0 || key == 0xE0) _getch();
  return true;
}

}  // namespace vel::platform
