// Shows usage and help. They go to standard output, also for tools that write their messages elsewhere, so
// that users can page and search them. Laying out the texts is base/usage_text.cpp's work.
#include <iostream>

#include "base/usage_text.h"
#include "consoleui/console_ui_format.h"
#include "consoleui/console_ui_usage.h"

namespace vel::consoleui {
namespace {

/// Writes " [-h|-H|-?|-copyright] [-quiet]". The letters and words are those of the catalog.
void writeBuiltInSwitches(std::ostream& stream, const Words& words) {
  stream << " [";
  const VelClMessage letters = words[Word::HelpLetters];
  for (const char* letter = letters.getAsCString(); *letter != '\0'; ++letter)
    stream << '-' << *letter << '|';
  stream << '-' << words[Word::Copyright] << "] [-" << words[Word::Quiet] << ']';
}

void writeSwitchesOf(std::ostream& stream, const VelStConventions& choices) {
  stream << " [--help" << (choices.version != nullptr ? "|--version]" : "]");
  if (choices.colors) stream << " [-color auto|always|never]";
}

}  // namespace

void writeUsage(std::ostream& stream, const ConsoleSettings& settings, const Words& words,
                bool hasSourceOfMessages) {
  const VelClMessage heading = words[Word::Usage];
  // Further lines begin below the first element: after the heading, ": ", the process name and a blank.
  const std::size_t indentation = widthOf(heading.getAsCString()) + settings.getIndentation() + 3;
  stream << '\n'
         << settings.style(stream, VelEnTextStyle::HEADING) << heading << ':'
         << settings.style(stream, VelEnTextStyle::PLAIN) << ' ' << settings.getProcessName();
  // Without a source of messages the names of the built-in switches are unknown.
  if (hasSourceOfMessages) writeBuiltInSwitches(stream, words);
  const Conventions* const conventions = settings.conventions();
  if (conventions != nullptr) writeSwitchesOf(stream, conventions->choices());
  if (hasSourceOfMessages || conventions != nullptr) {
    stream << '\n';
    writeFill(stream, indentation, ' ');
  } else {
    stream << ' ';
  }
  const bool hide = settings.mustHideTaggedLines() || settings.mustDisableTaggedLines();
  writeText(stream, settings.getUsage(), hide ? TextKind::UsageWithoutTaggedLines : TextKind::Usage,
            indentation);
  stream.flush();
}

}  // namespace vel::consoleui

using vel::TextKind;
using vel::consoleui::settingsOf;
using vel::consoleui::Word;

bool VelClConsoleUI::hasSourceOfMessages() const {
  return catalog_.isValid() || catalog_.hasValidStringTable();
}

void VelClConsoleUI::displayUsage(bool exit) const {
  vel::consoleui::writeUsage(std::cout, settingsOf(*this), words(), hasSourceOfMessages());
  if (exit) exitAfterUsage();
}

/// Ends the process after a command line with errors.
void VelClConsoleUI::exitWithUsage() const {
  std::ostream& stream = settingsOf(*this).refusalStream();
  vel::consoleui::writeUsage(stream, settingsOf(*this), words(), hasSourceOfMessages());
  stream << std::endl;
  processExit(vel::consoleui::kExitUsage);
}

void VelClConsoleUI::exitAfterUsage() const {
  std::cout << std::endl;
  processExit(vel::consoleui::kExitUsage);
}

void VelClConsoleUI::displayHelp(bool exit) const {
  const VelClMessage heading = words()[Word::Help];
  const VelClMessage none = words()[Word::NoHelp];
  const char* help = params_->getHelp();
  std::cout << '\n' << heading << ": ";
  vel::writeText(std::cout, *help != '\0' ? help : none.getAsCString(), TextKind::Help,
                 vel::consoleui::widthOf(heading.getAsCString()) + 2);
  std::cout << std::endl;
  if (exit) processExit(vel::consoleui::kExitUsage);
}

void VelClConsoleUI::displayUsageHelp(const char* usage, const char* help, bool exit) {
  params_->setUsageHelp(usage, help);
  displayUsage(false);
  displayHelp(exit);
}
