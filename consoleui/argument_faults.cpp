// Faults of arguments that the usage string alone does not show: how the user typed them, what was meant, and
// whether a value is where none belongs. The check itself is console_ui.cpp's work.
#include "consoleui/argument_faults.h"

#include <algorithm>
#include <cstring>
#include <iostream>

#include "consoleui/console_settings.h"
#include "consoleui/switch_names.h"

namespace vel::consoleui {
namespace {

/// Returns the name that a switch has after its first character; empty for an empty argument.
std::string_view nameOf(const PositionCursor& argument) {
  const std::string_view text(argument.getAsCString());
  return text.substr(std::min<std::size_t>(1, text.size()));
}

const ArgumentOrigin* originOf(const VelClConsoleUI& ui, const PositionCursor& argument) {
  const Conventions* const conventions = settingsOf(ui).conventions();
  return conventions != nullptr ? &conventions->line().originAt(argument.getIndex()) : nullptr;
}

bool hasAttachedValue(const VelClConsoleUI& ui, const PositionCursor& argument) {
  const Conventions* const conventions = settingsOf(ui).conventions();
  return conventions != nullptr && conventions->line().hasAttachedValue(argument.getIndex());
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

/// The names of the built-in switches that take part in suggestions and abbreviations.
class BuiltInNames {
 public:
  BuiltInNames(const VelStConventions& choices, const Words& words)
      : choices_(choices), quiet_(words[Word::Quiet]), copyright_(words[Word::Copyright]) {}

  /// Appends those that are not there yet, with two dashes in all cases or only where they are spelled so.
  void appendTo(SwitchNames& names, bool hasTwoDashes) const {
    const auto append = [&](std::string_view name) {
      if (std::ranges::find(names, name) == names.end()) names.push_back(name);
    };
    if (hasTwoDashes) append("help");
    if (hasTwoDashes && choices_.version != nullptr) append("version");
    if (choices_.colors) append("color");
    append(quiet_.getAsCString());
    append(copyright_.getAsCString());
  }

 private:
  const VelStConventions& choices_;
  VelClMessage quiet_, copyright_;
};

/// Returns "did you mean -a, -b?", or "" if no name resembles the argument.
String suggestionFor(const VelClConsoleUI& ui, const Words& words, const char* typed) {
  const VelStConventions& choices = settingsOf(ui).conventions()->choices();
  const BuiltInNames builtIn(choices, words);
  SwitchNames names = shownSwitches(ui);
  builtIn.appendTo(names, true);
  String text;
  for (const std::string_view name : similarNames(names, nameIn(typed)))
    text.append(text.empty() ? " " : ", ").append(dashesOf(name, choices, typed)).append(name);
  return text.empty() ? text : choices.didYouMean + text + "?";
}

}  // namespace

bool isNamed(const VelClArgvCursor& argument, const char* name) {
  return argument.isSwitch() && std::strcmp(argument.getAsCString() + 1, name) == 0;
}

bool hasSwitch(const VelClConsoleUI& ui, const char* name) {
  PositionCursor argument(ui);
  for (bool more = argument.setToFirst(); more; more = argument.setToNext())
    if (isNamed(argument, name) && !hasAttachedValue(ui, argument)) return true;
  return false;
}

bool isAttachedValue(const VelClConsoleUI& ui, const PositionCursor& argument) {
  const ArgumentOrigin* const origin = originOf(ui, argument);
  return origin != nullptr && origin->isAttached;
}

bool isData(const VelClConsoleUI& ui, const PositionCursor& argument) {
  const ArgumentOrigin* const origin = originOf(ui, argument);
  return origin != nullptr && origin->isData;
}

bool hasUnwantedValue(const VelClConsoleUI& ui, const PositionCursor& argument) {
  return hasAttachedValue(ui, argument) && !argument.reqArg();
}

bool isBuiltInWithValue(const VelClConsoleUI& ui, const Words& words, const PositionCursor& argument) {
  if (!hasAttachedValue(ui, argument)) return false;
  const VelClMessage letters = words[Word::HelpLetters];
  const std::string_view name = nameOf(argument);
  if (name.size() == 1 && std::string_view(letters.getAsCString()).find(name[0]) != std::string_view::npos)
    return true;
  return name == "-help" || name == "-version" || isNamed(argument, words[Word::Quiet].getAsCString()) ||
         isNamed(argument, words[Word::Copyright].getAsCString());
}

bool isCutOff(const VelClConsoleUI& ui, const PositionCursor& argument) {
  const ArgumentOrigin* const origin = originOf(ui, argument);
  return origin != nullptr && origin->isCutOff;
}

void reportArgument(const VelClConsoleUI& ui, const Words& words, Word fault,
                    const PositionCursor& argument) {
  const VelClMessage message = words[fault];
  const ArgumentOrigin* const origin = originOf(ui, argument);
  if (origin == nullptr) {
    ui.error(std::cerr, message.getAsCString(), argument.getAsCString());
    return;
  }
  String suggestion;
  if (fault == Word::UnknownArgument && settingsOf(ui).conventions()->choices().didYouMean != nullptr)
    suggestion = suggestionFor(ui, words, origin->typed);
  ui.error(std::cerr, message.getAsCString(), origin->typed,
           suggestion.empty() ? nullptr : suggestion.c_str());
}

void completeNames(const VelClConsoleUI& ui, const Words& words) {
  Conventions& conventions = *settingsOf(ui).conventions();
  const BuiltInNames builtIn(conventions.choices(), words);
  const VelClMessage letters = words[Word::HelpLetters];
  Abbreviations abbreviations{switchNamesOf(ui.getUsage(), true), shownSwitches(ui), shownSwitches(ui)};
  for (const char* letter = letters.getAsCString(); *letter != '\0'; ++letter)
    abbreviations.whole.emplace_back(letter, 1);
  builtIn.appendTo(abbreviations.oneDash, false);
  builtIn.appendTo(abbreviations.twoDashes, true);
  conventions.complete(abbreviations);
}

bool mayAbbreviateBuiltIn(const VelClConsoleUI& ui, const Words& words) {
  const Conventions& conventions = *settingsOf(ui).conventions();
  SwitchNames names;
  const BuiltInNames builtIn(conventions.choices(), words);
  builtIn.appendTo(names, true);
  PositionCursor argument(ui);
  for (bool more = argument.setToFirst(); more; more = argument.setToNext()) {
    if (!argument.isSwitch()) continue;
    const std::string_view typed = nameOf(argument);
    for (const std::string_view name : names)
      if (typed.size() < name.size() && name.starts_with(typed)) return true;
  }
  return false;
}

}  // namespace vel::consoleui
