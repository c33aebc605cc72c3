// Tells the level of the library. The strings are fixed and not derived from the build, so that the same
// level has the same name and date on every system and in every build.
#include "vel_include/vel_helpers.h"

const char* velLibraryGetLevel(void) {
  return "VELLibR5-24";
}

const char* velLibraryGetTod(void) {
  return "Jan 14 2009";
}

bool velLibraryIsShipCode(void) {
  return true;
}
