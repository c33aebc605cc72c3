// Walks the arguments of a command line. The cursor is an index and nothing more: every access checks it
// against the vector, so an index beyond the ends is harmless. Classifying arguments by a usage string is
// argv_check_cursor.cpp's work.
#include <cstring>
#include <limits>

#include "base/short_text.h"
#include "consoleui/argument_marks.h"
#include "vel_include/vel_consoleui.h"

namespace {

using Limits = std::numeric_limits<int32_t>;

}  // namespace

VelClArgvCursor::VelClArgvCursor(int argc, const char* const* argv)
    : count_(argv != nullptr ? argc : 0), index_(1), arguments_(argv) {}

VelClArgvCursor::VelClArgvCursor(const VelClConsoleUI& ui) : VelClArgvCursor(ui.getArgc(), ui.getArgv()) {}

VelClArgvCursor::~VelClArgvCursor() = default;

bool VelClArgvCursor::isValid() const {
  return argumentAt(index_) != nullptr;
}

bool VelClArgvCursor::setToFirst() {
  index_ = 1;
  return isValid();
}

bool VelClArgvCursor::setToLast() {
  // Qualified, here and in positionTo: a derived cursor's override would skip arguments that are not free.
  index_ = count_;
  return VelClArgvCursor::setToPrevious();
}

// Intentional: the index moves on beyond both ends, so that as many steps lead back. It stops only where it
// would overflow.
bool VelClArgvCursor::setToNext() {
  if (index_ < Limits::max()) ++index_;
  return isValid();
}

bool VelClArgvCursor::setToPrevious() {
  if (index_ > Limits::min()) --index_;
  return isValid();
}

/// Index 0 is the program, which is not an argument. A null pointer in the vector makes the position invalid,
/// too.
const char* VelClArgvCursor::argumentAt(int32_t index) const {
  return index >= 1 && index < count_ ? arguments_[index] : nullptr;
}

const char* VelClArgvCursor::getAsCString() const {
  const char* argument = argumentAt(index_);
  return vel::textOrEmpty(argument);
}

const char* VelClArgvCursor::getArgv0() const {
  return count_ > 0 && arguments_[0] != nullptr ? arguments_[0] : "";
}

/// An argument that is marked as data is not a switch, even if it begins with "-".
bool VelClArgvCursor::isSwitchAt(int32_t index) const {
  return VelClUsageCursor::isSwitchIndicator(argumentAt(index)) &&
         !vel::consoleui::ArgumentMarks::isData(arguments_, index);
}

bool VelClArgvCursor::isSwitch() const {
  return isSwitchAt(index_);
}
bool VelClArgvCursor::isArg() const {
  return isValid() && !isSwitch();
}

bool VelClArgvCursor::matches(const char* name) const {
  if (name == nullptr || !isSwitchAt(index_)) return false;
  if (VelClUsageCursor::isSwitchIndicator(name)) ++name;
  return std::strcmp(argumentAt(index_) + 1, name) == 0;
}

bool VelClArgvCursor::positionTo(const char* name) {
  for (bool more = VelClArgvCursor::setToFirst(); more; more = VelClArgvCursor::setToNext())
    if (matches(name)) return true;
  return false;
}
