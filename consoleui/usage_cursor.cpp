// Walks the elements of a usage string. Comparing a command line with them is argv_check_cursor.cpp's work,
// showing the string base/usage_text.cpp's.
//
// The string is not parsed into a tree. The cursor scans it once, from left to right, and counts the open
// brackets. A switch takes a value if the next element is an argument at the same depth inside of a group:
//
//   (-key <key>) [-verbose] <file>
//    ^    ^       ^         ^
//    1    1       0         0        group depth, counted by "(" and ")" alone
//
// So -key takes a value, -verbose does not, and <file> is free.
#include <cstring>

#include "base/ascii.h"
#include "base/short_text.h"
#include "base/usage_text.h"
#include "vel_include/vel_consoleui.h"

namespace {

// Intentional: a line break is not among them, so a switch at the very end of a line never matches. Tools
// write their usage strings accordingly.
constexpr const char* kDelimiters = "[]<>(){}-| ";

bool isEndOrDelimiter(char c) {
  return c == '\0' || std::strchr(kDelimiters, c) != nullptr;
}

/// Returns the text without its "-", if that marks a switch.
const char* withoutIndicator(const char* text) {
  return VelClUsageCursor::isSwitchIndicator(text) ? text + 1 : text;
}

/// Whether the usage string starts with the text as a whole element: "-file" is not found in "-filename".
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
  // Intentional: the counters of depth and the marks are not reset. The header documents that a second walk
  // needs a new cursor.
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

// Looks ahead with a copy, which carries the depths along.
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
  // Intentional: a blank counts until the next element, so in " [a]" the letter begins an element, although
  // a bracket precedes it.
  bool blankSeen = false;
  while (*position_ != '\0') {
    if (!updateState(blankSeen)) return false;
    if (isAtElement(blankSeen)) return true;
    // Intentional: the character after a single dot is skipped with it, even a bracket, which is then not
    // counted.
    if (*position_ == '.' && position_[1] != '\0') ++position_;
    ++position_;
  }
  return false;
}

/// Updates the depths and marks for the current character. A quoted text is skipped up to its closing quote;
/// without one the position moves to the end of the string and the result is false.
bool VelClUsageCursor::updateState(bool& blankSeen) {
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

/// Whether an element begins at the position. For an ellipsis the position moves to its last dot, so that the
/// dots are one element.
bool VelClUsageCursor::isAtElement(bool blankSeen) {
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
  // Skips at least the character at which locateNext stopped; otherwise it would stop there again.
  if (*position_ == '-' || *position_ == '/' || *position_ == '<') ++position_;
  while (vel::isAsciiAlnum(*position_) || *position_ == '.' || (inPlaceholder_ && *position_ == ' '))
    ++position_;
}
