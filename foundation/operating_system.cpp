// Maps the Windows platform number to the library's identifiers of operating systems. Other systems, and
// those that cannot be determined, get 0.
#include "platform/system.h"
#include "vel_include/vel_helpers.h"

unsigned int velGetOperatingSystemId(void) {
  switch (vel::platform::windowsPlatformId()) {
    case 2:
      return 512;
    case 1:
      return 513;
    case 0:
      return 514;
    default:
      return 0;
  }
}
