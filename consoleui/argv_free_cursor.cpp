// Walks the free arguments, which are neither switches nor values of switches. Each move is that of the base
// class, followed by more steps in the same direction until an argument is free.
#include "vel_include/vel_consoleui.h"

VelClArgvFreeCursor::VelClArgvFreeCursor(int argc, const char* const* argv, const char* usage)
    : VelClArgvCheckCursor(argc, argv, usage) {}

VelClArgvFreeCursor::VelClArgvFreeCursor(const VelClConsoleUI& ui) : VelClArgvCheckCursor(ui) {}

VelClArgvFreeCursor::~VelClArgvFreeCursor() = default;

bool VelClArgvFreeCursor::setToFirst() {
  VelClArgvCheckCursor::setToFirst();
  return skipToFree(+1);
}

bool VelClArgvFreeCursor::setToLast() {
  VelClArgvCheckCursor::setToLast();
  return skipToFree(-1);
}

bool VelClArgvFreeCursor::setToNext() {
  VelClArgvCheckCursor::setToNext();
  return skipToFree(+1);
}

bool VelClArgvFreeCursor::setToPrevious() {
  VelClArgvCheckCursor::setToPrevious();
  return skipToFree(-1);
}

/// Moves on by `step` to a free argument, from the current position on.
bool VelClArgvFreeCursor::skipToFree(int32_t step) {
  while (isValid() && !isFree()) setIndex(getIndex() + step);
  return isValid();
}
