// The start of a console user interface with its built-in switches, the check of the command line, and the
// end of the process. Reading a tool's own switches is console_ui_switches.cpp's work.
//
// A tool calls init, then handleUsageHelp. All words that are shown come from the message catalog, so
// init first attaches the built-in table to the library's own catalog, which need not be installed.
#include <cstdlib>
#include <cstring>
#include <iostream>

#include "consoleui/argument_faults.h"
#include "consoleui/console_settings.h"
#include "consoleui/console_ui_format.h"
#include "consoleui/console_ui_words.h"
#include "environment/utf8_arguments.h"
#include "foundation/allocator.h"
#include "vel_include/vel_helpers.h"

using vel::consoleui::ConsoleSettings;
using vel::consoleui::Conventions;
using vel::consoleui::settingsOf;
using vel::consoleui::Word;

namespace {

constexpr const char* kCopyrightNotice = "qamc5032, operating-system services library";

/// Holds a message and gives its text, or null for message 0, by which tools leave out a title or help.
class OptionalMessage {
 public:
  OptionalMessage(const VelClMessageCatalog& catalog, unsigned long id) : message_(catalog, id) {}
  const char* text() const {
    return VelClMessageCatalog::isValidMessageId(message_.getId()) ? message_.getAsCString() : nullptr;
  }

 private:
  VelClMessage message_;
};

int countIn(int argc, const char* const* argv) {
  return argv != nullptr ? vel::environment::inUtf8(argc, argv).count : 0;
}

const char* const* textsIn(int argc, const char* const* argv) {
  return vel::environment::inUtf8(argc, argv).texts;
}

}  // namespace

VelClConsoleUI::VelClConsoleUI(int argc, const char* const* argv)
    : messageBase_(0),
      argc_(countIn(argc, argv)),
      argv_(textsIn(argc, argv)),
      params_(vel::create<ConsoleSettings>(VelClArgvCursor(argc_, argv_).getArgv0())) {}

VelClConsoleUI::VelClConsoleUI(int argc, const char* const* argv, const VelClFilename& catalogFile,
                               unsigned long messageBase, const char* const* table, unsigned long size)
    : catalog_(catalogFile),
      messageBase_(static_cast<uint32_t>(messageBase)),
      argc_(countIn(argc, argv)),
      argv_(textsIn(argc, argv)),
      params_(vel::create<ConsoleSettings>(VelClArgvCursor(argc_, argv_).getArgv0())) {
  if (!catalog_.isValid()) catalog_.useStringTable(table, size);
}

VelClConsoleUI::~VelClConsoleUI() {
  vel::destroy(static_cast<ConsoleSettings*>(params_));
}

const VelClMessageCatalog& VelClConsoleUI::getMessageCatalog() const {
  return catalog_;
}

vel::consoleui::Words VelClConsoleUI::words() const {
  return {catalog_, messageBase_};
}

/// Returns false if the catalog still has neither a library nor a string table. The built-in table is not
/// attached to the tool's own catalog, in which its numbers may mean other messages.
bool VelClConsoleUI::attachBuiltInTable() {
  if (catalog_.hasDefaultVelCatalog()) {
    unsigned long size = 0;
    const char* const* const table = velMsgCatGetBuiltInTable(&size);
    catalog_.useStringTable(table, size);
  }
  return catalog_.isValid() || catalog_.hasValidStringTable();
}

void VelClConsoleUI::init(const char* title, const char* description, const char* toolLevel,
                          const char* toolDate) {
  if (Conventions* const conventions = settingsOf(*this).conventions())
    conventions->setTexts({title, description, toolLevel, toolDate});
  if (!attachBuiltInTable()) {
    showTitle(title, description);
    return;
  }
  if (vel::consoleui::hasSwitch(*this, words()[Word::Quiet].getAsCString())) params_->setQuietMode(true);
  showTitle(title, description);
  if (vel::consoleui::hasSwitch(*this, words()[Word::Copyright].getAsCString()))
    displayCopyright(toolLevel, toolDate);
}

void VelClConsoleUI::init(unsigned long titleId, unsigned long descriptionId, const char* toolLevel,
                          const char* toolDate) {
  attachBuiltInTable();
  const OptionalMessage title(getMessageCatalog(), titleId);
  const OptionalMessage description(getMessageCatalog(), descriptionId);
  init(title.text(), description.text(), toolLevel, toolDate);
}

void VelClConsoleUI::handleUsageHelp(const char* usage, const char* help) {
  params_->setUsageHelp(usage, help);
  answerQuestions();
  handleHelpSwitches();
  checkColorSwitch();
  if (*getUsage() != '\0') checkCommandLine();
}

void VelClConsoleUI::handleUsageHelp(unsigned long usageId, unsigned long helpId) {
  const OptionalMessage usage(getMessageCatalog(), usageId);
  const OptionalMessage help(getMessageCatalog(), helpId);
  handleUsageHelp(usage.text(), help.text());
}

/// Each letter of the message is a switch. If the message cannot be loaded, its text is the failure text, and
/// the letters of that are tried.
void VelClConsoleUI::handleHelpSwitches() const {
  const VelClMessage letters = words()[Word::HelpLetters];
  for (const char* letter = letters.getAsCString(); *letter != '\0'; ++letter) {
    const char name[] = {*letter, '\0'};
    if (!vel::consoleui::hasSwitch(*this, name)) continue;
    displayUsage(false);
    displayHelp(true);
  }
}

/// Checks every argument before the process ends, so that the user sees all mistakes in one run.
void VelClConsoleUI::checkCommandLine() const {
  bool legal = true;
  vel::consoleui::PositionCursor argument(*this);
  for (bool more = argument.setToFirst(); more; more = argument.setToNext())
    if (!checkArgument(argument)) legal = false;
  if (!legal) exitWithUsage();
}

bool VelClConsoleUI::checkArgument(const VelClArgvCheckCursor& checked) const {
  using namespace vel::consoleui;
  const auto& argument = static_cast<const PositionCursor&>(checked);
  const auto faulty = [&](Word fault) {
    reportArgument(*this, words(), fault, argument);
    return false;
  };
  bool legal = true;
  if (isAttachedValue(*this, argument)) return legal;
  // Intentional: -quiet is exempt from this check only, so repeating it is an error. The other built-in
  // switches never get here, because they end the process before.
  if (!argument.isLegal() && !isNamed(argument, words()[Word::Quiet].getAsCString()) &&
      !isBuiltInWithValue(*this, words(), argument))
    legal = faulty(Word::UnknownArgument);
  if (params_->mustDisableTaggedLines() && !isData(*this, argument) && argument.isTagged())
    legal = faulty(Word::ArgumentNotAllowed);
  if (!argument.isSwitch()) return legal;
  if (legal && hasUnwantedValue(*this, argument)) legal = faulty(Word::ArgumentNotAllowed);
  // Only later arguments are compared, so each repetition is reported once per pair.
  VelClArgvCheckCursor later(argument);
  while (later.setToNext())
    if (later.matches(argument.getAsCString())) legal = faulty(Word::IllegalRepetition);
  return legal;
}

void VelClConsoleUI::displayTitle(const char* title, const char* description) const {
  if (title == nullptr && description == nullptr) return;
  const ConsoleSettings& settings = settingsOf(*this);
  std::ostream& stream = settings.messageStream();
  stream << '\n'
         << settings.style(stream, VelEnTextStyle::HEADING) << getProcessName()
         << settings.style(stream, VelEnTextStyle::PLAIN);
  if (title != nullptr) stream << " - " << title;
  if (description != nullptr) stream << "   " << description;
  stream << '\n';
}

void VelClConsoleUI::displayCopyright(const char* toolLevel, const char* toolDate) const {
  using vel::consoleui::writeLine;
  const VelClMessage level = words()[Word::Level];
  const VelClMessage date = words()[Word::CompileDate];
  std::cout << '\n'
            << words()[Word::CopyrightTitle] << ":\n  " << kCopyrightNotice << "\n\n"
            << level << ":\n";
  writeLine(std::cout, *params_, words()[Word::LibraryLevel].getAsCString(), velLibraryGetLevel());
  writeLine(std::cout, *params_, date.getAsCString(), velLibraryGetTod());
  if (toolLevel != nullptr && toolDate != nullptr) {
    std::cout << '\n' << level << ":\n";
    writeLine(std::cout, *params_, level.getAsCString(), toolLevel);
    writeLine(std::cout, *params_, date.getAsCString(), toolDate);
  }
  processExit(vel::consoleui::kExitUsage);
}

/// Leaves by std::exit, which runs exit handlers but no destructors of local objects.
void VelClConsoleUI::processExit(int exitCode) const {
  const ConsoleSettings& settings = settingsOf(*this);
  std::ostream& bell = settings.messageStream();
  if (exitCode != 0 && (settings.conventions() == nullptr || settings.conventions()->isTerminal(bell)))
    bell << '\a';
  bell.flush();
  getOutputStream().flush();
  std::exit(exitCode);
}
