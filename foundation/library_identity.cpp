// The library's level.
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
