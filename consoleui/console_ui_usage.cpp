// Shows usage and help. They go to standard output, also for tools that write their messages elsewhere, so
// that users can page and search them. Laying out the texts is base/usage_text.cpp's work.
#include <iostream>

#include "base/usage_text.h"
#include "consoleui/console_ui_format.h"
#include "consoleui/console_ui_words.h"

using vel::TextKind;
using vel::consoleui::Word;
using vel::consoleui::Words;

namespace {

/// Writes " [-h|-H|-?|-copyright] [-quiet]". The letters and words are those of the catalog.
void writeBuiltInSwitches(std::ostream& stream, const Words& words) {
  stream << " [";
  const VelClMessage letters = words[Word::HelpLetters];
  for (const char* letter = letters.getAsCString(); *letter != '\0'; ++letter)
    stream << '-' << *letter << '|';
  stream << '-' << words[Word::Copyright] << "] [-" << words[Word::Quiet] << ']';
}

}  // namespace

void VelClConsoleUI::displayUsage(bool exit) const {
  const VelClMessage heading = words()[Word::Usage];
  // Further lines begin below the first element: after the heading, ": ", the process name and a blank.
  const std::size_t indentation =
      vel::consoleui::widthOf(heading.getAsCString()) + params_->getIndentation() + 3;
  std::cout << '\n' << heading << ": " << getProcessName();
  // Without a source of messages the names of the built-in switches are unknown.
  if (catalog_.isValid() || catalog_.hasValidStringTable()) {
    writeBuiltInSwitches(std::cout, words());
    std::cout << '\n';
    vel::writeFill(std::cout, indentation, ' ');
  } else {
    std::cout << ' ';
  }
  const bool hide = params_->mustHideTaggedLines() || params_->mustDisableTaggedLines();
  vel::writeText(std::cout, getUsage(), hide ? TextKind::UsageWithoutTaggedLines : TextKind::Usage,
                 indentation);
  std::cout.flush();
  if (exit) exitAfterUsage();
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
