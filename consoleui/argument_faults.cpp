// Faults of arguments that the usage string alone does not show: how the user typed them, what was meant, and
// whether a value is where none belongs. The check itself is console_ui.cpp's work.
#include "consoleui/argument_faults.h"

#include <cstring>
#include <iostream>

#include "consoleui/console_settings.h"
#include "consoleui/switch_names.h"

namespace vel::consoleui {
namespace {

const ArgumentOrigin* originOf(const VelClConsoleUI& ui, const char* argument) {
  const Conventions* const conventions = settingsOf(ui).conventions();
  return conventions != nullptr ? conventions->line().originOf(argument) : nullptr;
}

SwitchNames shownSwitches(const VelClConsoleUI& ui) {
  const VelClConsoleUIParams& params = ui.getParams();
  return switchNamesOf(params.getUsage(), !params.mustHideTaggedLines() && !params.mustDisableTaggedLines());
}

/// Returns the name that an argument means: without dashes and without a value after "=".
std::string_view nameIn(const char* typed) {
  std::string_view name(typed);
  while (name.starts_with('-')) name.remove_prefix(1);
  return name.substr(0, name.find('='));
}

/// Returns the dashes that the name of a switch has in messages: those that the user likes, but two for names
/// that are built in with two.
const char* dashesOf(std::string_view name, const VelStConventions& choices, const char* typed) {
  const bool isLong = name == "help" || (name == "version" && choices.version != nullptr);
  return isLong || std::string_view(typed).starts_with("--") ? "--" : "-";
}

/// Returns "did you mean -a, -b?", or "" if no name resembles the argument.
String suggestionFor(const VelClConsoleUI& ui, const Words& words, const char* typed) {
  const VelStConventions& choices = settingsOf(ui).conventions()->choices();
  const VelClMessage quiet = words[Word::Quiet], copyright = words[Word::Copyright];
  SwitchNames names = shownSwitches(ui);
  for (const std::string_view name :
       {std::string_view("help"), std::string_view("version"), std::string_view("color"),
        std::string_view(quiet.getAsCString()), std::string_view(copyright.getAsCString())}) {
    const bool isOff =
        (name == "version" && choices.version == nullptr) || (name == "color" && !choices.colors);
    if (!isOff) names.push_back(name);
  }
  String text;
  for (const std::string_view name : similarNames(names, nameIn(typed)))
    text.append(text.empty() ? " " : ", ").append(dashesOf(name, choices, typed)).append(name);
  return text.empty() ? text : choices.didYouMean + text + "?";
}

/// Whether the name is one of the switches that every user interface has.
bool isBuiltIn(std::string_view name, const Words& words) {
  const VelClMessage letters = words[Word::HelpLetters], quiet = words[Word::Quiet];
  const bool isHelp = name.size() == 1 && std::strchr(letters.getAsCString(), name[0]) != nullptr;
  return isHelp || name == quiet.getAsCString();
}

}  // namespace

bool isAttachedValue(const VelClConsoleUI& ui, const char* argument) {
  const ArgumentOrigin* const origin = originOf(ui, argument);
  return origin != nullptr && origin->isAttached;
}

bool isData(const VelClConsoleUI& ui, const char* argument) {
  const ArgumentOrigin* const origin = originOf(ui, argument);
  return origin != nullptr && origin->isData;
}

bool hasUnwantedValue(const VelClConsoleUI& ui, const VelClArgvCheckCursor& argument) {
  const Conventions* const conventions = settingsOf(ui).conventions();
  return conventions != nullptr && conventions->line().hasAttachedValue(argument.getAsCString()) &&
         !argument.reqArg();
}

bool isLastSwitch(const VelClConsoleUI& ui, const char* argument) {
  const Conventions* const conventions = settingsOf(ui).conventions();
  return conventions != nullptr && conventions->line().lastBeforeEnd() == argument;
}

void reportArgument(const VelClConsoleUI& ui, const Words& words, Word fault, const char* argument) {
  const VelClMessage message = words[fault];
  const Conventions* const conventions = settingsOf(ui).conventions();
  if (conventions == nullptr) {
    ui.error(std::cerr, message.getAsCString(), argument);
    return;
  }
  const ArgumentOrigin* const origin = conventions->line().originOf(argument);
  const char* const typed = origin != nullptr ? origin->typed : argument;
  String suggestion;
  if (fault == Word::UnknownArgument && conventions->choices().didYouMean != nullptr)
    suggestion = suggestionFor(ui, words, typed);
  ui.error(std::cerr, message.getAsCString(), typed, suggestion.empty() ? nullptr : suggestion.c_str());
}

void completeNames(VelClConsoleUI& ui, const Words& words) {
  const SwitchNames names = shownSwitches(ui);
  VelClArgvCheckCursor argument(ui);
  int index = 1;
  for (bool more = argument.setToFirst(); more; more = argument.setToNext(), ++index) {
    if (!argument.isSwitch() || argument.isLegal()) continue;
    const std::string_view typed(argument.getAsCString() + 1);
    if (isBuiltIn(typed, words)) continue;
    const std::string_view name = completedName(names, typed);
    if (!name.empty()) settingsOf(ui).conventions()->line().rename(index, name);
  }
}

}  // namespace vel::consoleui
