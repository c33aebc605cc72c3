// The part of a user interface that useConventions switches on. The command line is rewritten at once, so
// that everything else reads the new vector; names that depend on the usage string wait for handleUsageHelp.
#include "base/short_text.h"
#include "consoleui/argument_faults.h"
#include "consoleui/console_answers.h"
#include "consoleui/console_settings.h"
#include "consoleui/console_ui_messages.h"
#include "platform/environment.h"

using vel::consoleui::ColorFault;
using vel::consoleui::Conventions;
using vel::consoleui::settingsOf;
using vel::consoleui::Word;

void VelClConsoleUI::useConventions(const VelStConventions& conventions) {
  vel::consoleui::ConsoleSettings& settings = settingsOf(*this);
  const Conventions* const before = settings.conventions();
  // A second call begins again with the vector of the program.
  const int argc = before != nullptr ? before->originalCount() : argc_;
  const char* const* const argv = before != nullptr ? before->originalArguments() : argv_;
  settings.setConventions(vel::OwnedObject<Conventions>(vel::create<Conventions>(conventions, argc, argv)));
  argc_ = settings.conventions()->line().count();
  argv_ = settings.conventions()->line().arguments();
  catalog_.useLanguageFallback();
}

const char* VelClConsoleUI::style(const std::ostream& stream, VelEnTextStyle style) const {
  return settingsOf(*this).style(stream, style);
}

namespace {

bool mustDescribe() {
  return *vel::textOrEmpty(vel::platform::settingValue("VEL_CONSOLEUI_DESCRIBE")) != '\0';
}

}  // namespace

/// Without conventions the title is shown in quiet mode, too.
void VelClConsoleUI::showTitle(const char* title, const char* description) {
  if (Conventions* const conventions = settingsOf(*this).conventions()) {
    if (conventions->line().hasVersion()) vel::consoleui::answerVersion(*this);
    if (conventions->line().hasHelp() || mustDescribe() || mustBeQuiet()) return;
    if (conventions->choices().abbreviations && vel::consoleui::mayAbbreviateBuiltIn(*this, words())) {
      conventions->postponeTitle();
      return;
    }
  }
  displayTitle(title, description);
}

void VelClConsoleUI::answerQuestions() {
  Conventions* const conventions = settingsOf(*this).conventions();
  if (conventions == nullptr) return;
  if (mustDescribe()) vel::consoleui::answerDescription(*this);
  if (conventions->choices().abbreviations) {
    vel::consoleui::completeNames(*this, words());
    argc_ = conventions->line().count();
    argv_ = conventions->line().arguments();
    if (conventions->line().hasVersion()) vel::consoleui::answerVersion(*this);
  }
  if (conventions->line().hasHelp()) vel::consoleui::answerHelp(*this, words(), hasSourceOfMessages());
  if (!conventions->consumePostponedTitle()) return;
  if (vel::consoleui::hasSwitch(*this, words()[Word::Quiet].getAsCString())) params_->setQuietMode(true);
  const vel::consoleui::InitTexts texts = conventions->texts();
  if (!mustBeQuiet()) displayTitle(texts.title, texts.description);
  if (vel::consoleui::hasSwitch(*this, words()[Word::Copyright].getAsCString()))
    displayCopyright(texts.level, texts.date);
}

void VelClConsoleUI::checkColorSwitch() const {
  const Conventions* const conventions = settingsOf(*this).conventions();
  if (conventions == nullptr || conventions->colorFault() == ColorFault::None) return;
  if (conventions->colorFault() == ColorFault::NoValue)
    fatalArgument(vel::consoleui::kExitMissingValue, static_cast<uint32_t>(Word::NoValue), "-color");
  fatal(vel::consoleui::kExitUsage, words()[Word::InvalidValue].getAsCString(), "-color",
        *conventions->line().color(), "auto|always|never");
}
