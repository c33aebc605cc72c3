// Reads the switches of a tool and their values from the command line. Unlike the check against the usage
// string, which console_ui.cpp makes once at the start, this looks only for the switch that the tool asks
// for. A missing or wrong value ends the process, so tools need no error handling for it.
#include <cstdint>
#include <iostream>
#include <limits>
#include <optional>
#include <type_traits>

#include "base/ascii.h"
#include "consoleui/argument_faults.h"
#include "consoleui/console_ui_format.h"
#include "consoleui/console_ui_messages.h"
#include "consoleui/console_ui_words.h"
#include "consoleui/whole_number.h"

using vel::consoleui::Word;

namespace {

/// Resolves the name of a switch to text: a name, a letter or the number of a message. The object owns what
/// it points to and is therefore not copied.
class SwitchText {
 public:
  SwitchText(const VelClSwitchName& name, const VelClMessageCatalog& catalog)
      : letter_{'-', name.getLetter(), '\0'}, text_(name.getName()) {
    if (text_ != nullptr) return;
    if (name.getLetter() != '\0') {
      text_ = letter_;
    } else {
      message_.emplace(catalog, name.getMessageId());
      text_ = message_->getAsCString();
    }
  }
  SwitchText(const SwitchText&) = delete;
  SwitchText& operator=(const SwitchText&) = delete;

  const char* get() const { return text_; }

 private:
  char letter_[3];
  std::optional<VelClMessage> message_;
  const char* text_;
};

}  // namespace

/// Reports on standard error, even if the tool's own messages go elsewhere, and ends the process.
void VelClConsoleUI::fatalArgument(int exitCode, uint32_t word, const char* switchName) const {
  vel::consoleui::writeMessage(std::cerr, vel::consoleui::settingsOf(*this),
                               words()[Word::FatalErrorOccurred].getAsCString(), VelEnTextStyle::BAD,
                               {{words().message(word).getAsCString(), switchName}});
  processExit(exitCode);
}

bool VelClConsoleUI::hasArgSwitch(VelClSwitchName name) const {
  return VelClArgvCursor(*this).positionTo(SwitchText(name, getMessageCatalog()).get());
}

bool VelClConsoleUI::hasArgString(VelClSwitchName name, const char*& value) const {
  const SwitchText text(name, getMessageCatalog());
  vel::consoleui::PositionCursor argument(*this);
  if (!argument.positionTo(text.get())) return false;
  const bool isCutOff = vel::consoleui::isCutOff(*this, argument);
  if (isCutOff || !argument.setToNext() || argument.isSwitch())
    fatalArgument(vel::consoleui::kExitMissingValue, static_cast<uint32_t>(Word::NoValue), text.get());
  value = argument.getAsCString();
  return true;
}

/// Ends the process unless the whole text is a number within the limits.
int32_t VelClConsoleUI::wholeNumber(const char* switchName, const char* digits, int32_t minimum,
                                    int32_t maximum) const {
  using vel::consoleui::NumberFault;
  int32_t value = 0;
  const NumberFault fault = vel::consoleui::parseWholeNumber(digits, {minimum, maximum}, value);
  if (fault == NumberFault::None) return value;
  const bool isNumber = fault == NumberFault::OutOfRange;
  const vel::String limits = isNumber ? vel::consoleui::limitsHint(minimum, maximum, words()) : vel::String();
  const VelClMessage message = words()[isNumber ? Word::InvalidValue : Word::NonNumericValue];
  vel::consoleui::writeMessage(
      std::cerr, vel::consoleui::settingsOf(*this), words()[Word::FatalErrorOccurred].getAsCString(),
      VelEnTextStyle::BAD,
      {{message.getAsCString(), switchName, digits, isNumber ? limits.c_str() : nullptr}});
  processExit(vel::consoleui::kExitNonNumericValue);
}

/// Serves all overloads of hasArgNumval and reqArgNumval.
template <typename Number>
bool VelClConsoleUI::readNumber(VelClSwitchName name, Number& value) const {
  const SwitchText text(name, getMessageCatalog());
  vel::consoleui::PositionCursor argument(*this);
  if (!argument.positionTo(text.get())) return false;
  const bool isStrict = vel::consoleui::settingsOf(*this).conventions() != nullptr;
  // Intentional: without conventions the next argument is the value even if it looks like a switch, unlike
  // with texts.
  const bool isCutOff = vel::consoleui::isCutOff(*this, argument);
  if (isCutOff || !argument.setToNext() || (isStrict && argument.isSwitch()))
    fatalArgument(vel::consoleui::kExitMissingValue, static_cast<uint32_t>(Word::NoNumericValue), text.get());
  const char* digits = argument.getAsCString();
  if (isStrict) {
    // The limits of a long are those of 32 bits on every system.
    using Limits = std::numeric_limits<std::conditional_t<sizeof(Number) == 2, Number, int32_t>>;
    value = static_cast<Number>(wholeNumber(text.get(), digits, Limits::min(), Limits::max()));
    return true;
  }
  // Intentional: one apostrophe before the number is skipped.
  if (*digits == '\'') ++digits;
  if (!vel::isAsciiDigit(*digits) && *digits != '-')
    fatalArgument(vel::consoleui::kExitNonNumericValue, static_cast<uint32_t>(Word::NonNumericValue),
                  text.get());
  // Intentional: the range is not checked; a short gets the low 16 bits.
  value = static_cast<Number>(vel::parseInt32(digits));
  return true;
}

bool VelClConsoleUI::hasArgNumval(VelClSwitchName name, short& value) const {
  return readNumber(name, value);
}
bool VelClConsoleUI::hasArgNumval(VelClSwitchName name, int& value) const {
  return readNumber(name, value);
}
bool VelClConsoleUI::hasArgNumval(VelClSwitchName name, long& value) const {
  return readNumber(name, value);
}

void VelClConsoleUI::reqArgSwitch(VelClSwitchName name) const {
  if (!hasArgSwitch(name)) fatalMissingArg(SwitchText(name, getMessageCatalog()).get());
}

void VelClConsoleUI::reqArgString(VelClSwitchName name, const char*& value) const {
  if (!hasArgString(name, value)) fatalMissingArg(SwitchText(name, getMessageCatalog()).get());
}

void VelClConsoleUI::reqArgNumval(VelClSwitchName name, short& value) const {
  if (!readNumber(name, value)) fatalMissingArg(SwitchText(name, getMessageCatalog()).get());
}

void VelClConsoleUI::reqArgNumval(VelClSwitchName name, int& value) const {
  if (!readNumber(name, value)) fatalMissingArg(SwitchText(name, getMessageCatalog()).get());
}

void VelClConsoleUI::reqArgNumval(VelClSwitchName name, long& value) const {
  if (!readNumber(name, value)) fatalMissingArg(SwitchText(name, getMessageCatalog()).get());
}
