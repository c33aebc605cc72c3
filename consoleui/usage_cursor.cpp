// Walks the elements of a usage string. Comparing a command line with them is argv_check_cursor.cpp's
// work, showing the string base/usage_text.cpp's.
//
// Over "(-key <key>) [-verbose]" the cursor stops at "-key" and at "<key>", both at group depth 1, and at
// "-verbose" at depth 0: so -key takes a value and -verbose does not.
#include <cstring>

#include "base/ascii.h"
#include "base/short_text.h"
#include "base/usage_text.h"
#include "vel_include/vel_consoleui.h"

namespace {

// No line break among them: a switch at the very end of a line never matches. Keep.
constexpr const char* kDelimiters = "[]<>(){}-| ";

bool isEndOrDelimiter(char c) {
  return c == '\0' || std::strchr(kDelimiters, c) != nullptr;
}

/// The text behind its "-", if that marks a switch.
const char* withoutIndicator(const char* text) {
  return VelClUsageCursor::isSwitchIndicator(text) ? text + 1 : text;
}

bool startsWithElement(const char* usage, const char* text) {
  const std::size_t length = std::strlen(text);
  return std::strncmp(usage, text, length) == 0 && isEndOrDelimiter(usage[length]);
}

}  // namespace

VelClUsageCursor::VelClUsageCursor(const char* usage)
    : start_(vel::textOrEmpty(usage)),
      position_(start_),
      optionalDepth_(0),
      groupDepth_(0),
      tagged_(false),
      inPlaceholder_(false) {}

VelClUsageCursor::~VelClUsageCursor() = default;

bool VelClUsageCursor::isValid() const {
  return *position_ != '\0';
}

bool VelClUsageCursor::setToFirst() {
  // Depths and marks stay as they are. Keep.
  position_ = start_;
  return locateNext();
}

bool VelClUsageCursor::setToNext() {
  skipCurrent();
  return locateNext();
}

bool VelClUsageCursor::isSwitchIndicator(const char* argument) {
  return argument != nullptr && argument[0] == '-' && !vel::isAsciiDigit(argument[1]);
}

bool VelClUsageCursor::isToBeDisplayed(char c) {
  return vel::isShownInUsage(c);
}

bool VelClUsageCursor::isSwitch() const {
  return isSwitchIndicator(position_);
}
bool VelClUsageCursor::isFree() const {
  return !isSwitch() && groupDepth_ == 0;
}
bool VelClUsageCursor::isArgEllipsis() const {
  return *position_ == '.';
}

bool VelClUsageCursor::matches(const char* text) const {
  return text != nullptr && startsWithElement(position_, text);
}

bool VelClUsageCursor::matchesSwitch(const char* argument) const {
  return argument != nullptr && *position_ == '-' &&
         startsWithElement(position_ + 1, withoutIndicator(argument));
}

bool VelClUsageCursor::reqArg() const {
  if (groupDepth_ == 0) return false;
  VelClUsageCursor ahead(*this);
  return ahead.setToNext() && !ahead.isSwitch() && ahead.groupDepth_ == groupDepth_;
}

bool VelClUsageCursor::reqArgEllipsis() const {
  if (groupDepth_ == 0) return false;
  VelClUsageCursor ahead(*this);
  while (ahead.setToNext() && !ahead.isSwitch() && ahead.groupDepth_ == groupDepth_)
    if (ahead.isArgEllipsis()) return true;
  return false;
}

bool VelClUsageCursor::locateNext() {
  // A blank counts for the rest of this scan, not only for the character behind it. Keep.
  bool blankSeen = false;
  while (*position_ != '\0') {
    if (!takeCharacter(blankSeen)) return false;
    if (standsOnElement(blankSeen)) return true;
    // Whatever follows a single dot is passed over unseen. Keep.
    if (*position_ == '.' && position_[1] != '\0') ++position_;
    ++position_;
  }
  return false;
}

/// What the current character means for the walk. False when a quoted text does not end: then the walk
/// stands at the end of the string.
bool VelClUsageCursor::takeCharacter(bool& blankSeen) {
  switch (*position_) {
    case '\n':
      tagged_ = false;
      break;
    case ' ':
      blankSeen = true;
      break;
    case '!':
      tagged_ = true;
      break;
    case '(':
      ++groupDepth_;
      break;
    case ')':
      --groupDepth_;
      break;
    case '[':
      ++optionalDepth_;
      break;
    case ']':
      --optionalDepth_;
      break;
    case '>':
      inPlaceholder_ = false;
      break;
    case '"': {
      const char* closing = std::strchr(position_ + 1, '"');
      position_ = closing != nullptr ? closing : position_ + std::strlen(position_);
      return closing != nullptr;
    }
    default:
      break;
  }
  return true;
}

/// Whether an element begins here. An ellipsis moves the position to its last dot.
bool VelClUsageCursor::standsOnElement(bool blankSeen) {
  switch (*position_) {
    case '-':
    case '/':
      return true;
    case '<':
      inPlaceholder_ = true;
      return true;
    case '.':
      if (position_[1] != '.') return false;
      while (position_[1] == '.') ++position_;
      return true;
    default:
      return blankSeen && vel::isAsciiAlnum(*position_);
  }
}

void VelClUsageCursor::skipCurrent() {
  // Every character that locateNext stops at is stepped over; otherwise it would stop there again.
  if (*position_ == '-' || *position_ == '/' || *position_ == '<') ++position_;
  while (vel::isAsciiAlnum(*position_) || *position_ == '.' || (inPlaceholder_ && *position_ == ' '))
    ++position_;
}
