// Classifies the arguments of a command line by a usage string: known switch, value of a switch, or free
// argument. Each query walks the usage string anew. That keeps the cursor free of state besides its index,
// and command lines and usage strings are short.
#include "base/short_text.h"
#include "vel_include/vel_consoleui.h"

namespace {

/// Moves to the switch element that the argument names. If the usage string has several, the first one
/// counts.
bool findSwitch(VelClUsageCursor& usage, const char* argument) {
  for (bool more = usage.setToFirst(); more; more = usage.setToNext())
    if (usage.isSwitch() && usage.matchesSwitch(argument)) return true;
  return false;
}

/// Whether the usage string has an argument outside of all groups.
bool admitsFreeArguments(const char* usageText) {
  VelClUsageCursor usage(usageText);
  for (bool more = usage.setToFirst(); more; more = usage.setToNext())
    if (usage.isFree()) return true;
  return false;
}

}  // namespace

VelClArgvCheckCursor::VelClArgvCheckCursor(int argc, const char* const* argv, const char* usage)
    : VelClArgvCursor(argc, argv), usage_(vel::textOrEmpty(usage)) {}

VelClArgvCheckCursor::VelClArgvCheckCursor(const VelClConsoleUI& ui)
    : VelClArgvCursor(ui), usage_(ui.getUsage()) {}

VelClArgvCheckCursor::~VelClArgvCheckCursor() = default;

bool VelClArgvCheckCursor::isLegal() const {
  if (!isValid()) return false;
  // The number of free arguments is not checked: one in the usage string admits any number.
  if (!isSwitch()) return isBound() || admitsFreeArguments(usage_);
  VelClUsageCursor usage(usage_);
  return findSwitch(usage, getAsCString());
}

bool VelClArgvCheckCursor::reqArg() const {
  return isSwitchAt(getIndex()) && takesValue(argumentAt(getIndex()));
}

bool VelClArgvCheckCursor::hasArg() const {
  if (!isSwitch()) return false;
  const int32_t next = getIndex() + 1;
  return argumentAt(next) != nullptr && !isSwitchAt(next);
}

// Only the argument before counts: a switch with a list of values binds the first value alone.
bool VelClArgvCheckCursor::isBound() const {
  const int32_t before = getIndex() - 1;
  return isArg() && isSwitchAt(before) && takesValue(argumentAt(before));
}

bool VelClArgvCheckCursor::isFree() const {
  return isArg() && !isBound();
}

bool VelClArgvCheckCursor::isTagged() const {
  if (!isValid()) return false;
  VelClUsageCursor usage(usage_);
  for (bool more = usage.setToFirst(); more; more = usage.setToNext())
    if (usage.isTagged() && usage.matches(getAsCString())) return true;
  return false;
}

/// Whether the argument is a known switch with a value. Null, as before the first argument, is not.
bool VelClArgvCheckCursor::takesValue(const char* argument) const {
  if (!VelClUsageCursor::isSwitchIndicator(argument)) return false;
  VelClUsageCursor usage(usage_);
  return findSwitch(usage, argument) && usage.reqArg();
}
