// Compares arguments with the elements of a usage string.
#include "base/short_text.h"
#include "vel_include/vel_consoleui.h"

namespace {

/// Moves to the switch element that the argument names; the first one wins.
bool findSwitch(VelClUsageCursor& usage, const char* argument) {
  for (bool more = usage.setToFirst(); more; more = usage.setToNext())
    if (usage.isSwitch() && usage.matchesSwitch(argument)) return true;
  return false;
}

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
  if (!isSwitch()) return isBound() || admitsFreeArguments(usage_);
  VelClUsageCursor usage(usage_);
  return findSwitch(usage, getAsCString());
}

bool VelClArgvCheckCursor::reqArg() const {
  return takesValue(argumentAt(getIndex()));
}

bool VelClArgvCheckCursor::hasArg() const {
  if (!isSwitch()) return false;
  const char* next = argumentAt(getIndex() + 1);
  return next != nullptr && !VelClUsageCursor::isSwitchIndicator(next);
}

bool VelClArgvCheckCursor::isBound() const {
  return isArg() && takesValue(argumentAt(getIndex() - 1));
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

bool VelClArgvCheckCursor::takesValue(const char* argument) const {
  if (!VelClUsageCursor::isSwitchIndicator(argument)) return false;
  VelClUsageCursor usage(usage_);
  return findSwitch(usage, argument) && usage.reqArg();
}
