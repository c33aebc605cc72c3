// Answers to --help, --version and generators. They go to standard output without title, message frame and
// bell, because scripts read them.
#include "consoleui/console_answers.h"

#include <iostream>
#include <string_view>

#include "base/ascii.h"
#include "base/short_text.h"
#include "base/usage_text.h"
#include "consoleui/console_ui_usage.h"

namespace vel::consoleui {
namespace {

/// Returns the name by which the program was called, without directory and without ".exe".
std::string_view calledName(const VelClConsoleUI& ui) {
  const Conventions& conventions = *settingsOf(ui).conventions();
  std::string_view name = conventions.line().count() > 0 ? conventions.line().arguments()[0] : "";
  name.remove_prefix(name.find_last_of("/\\") + 1);
  if (name.size() > 4 && equalsIgnoringAsciiCase(name.data() + name.size() - 4, ".exe"))
    name.remove_suffix(4);
  return name;
}

/// An answer that nobody gets is a failure, as when the disk is full, but not one of the command line.
[[noreturn]] void end(const VelClConsoleUI& ui) {
  ui.processExit(std::cout.flush() ? 0 : kExitNotWritten);
}

void writeIndented(const char* heading, std::string_view text) {
  std::cout << heading << ":\n";
  while (!text.empty()) {
    const std::size_t end = text.find('\n');
    std::cout << ' ' << text.substr(0, end) << '\n';
    text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
  }
}

void writeField(const char* heading, std::string_view text) {
  if (text.empty()) return;
  std::cout << heading << ": " << text.substr(0, text.find('\n')) << '\n';
}

}  // namespace

void answerVersion(const VelClConsoleUI& ui) {
  std::cout << calledName(ui) << ' ' << settingsOf(ui).conventions()->choices().version << '\n';
  end(ui);
}

void answerHelp(const VelClConsoleUI& ui, const Words& words, bool hasSourceOfMessages) {
  const ConsoleSettings& settings = settingsOf(ui);
  const Conventions& conventions = *settings.conventions();
  std::cout << settings.style(std::cout, VelEnTextStyle::HEADING) << calledName(ui)
            << settings.style(std::cout, VelEnTextStyle::PLAIN);
  const InitTexts texts = conventions.texts();
  if (*textOrEmpty(texts.title) != '\0') std::cout << " - " << texts.title;
  if (*textOrEmpty(texts.description) != '\0') std::cout << "   " << texts.description;
  std::cout << '\n';
  writeUsage(std::cout, settings, words, hasSourceOfMessages);
  std::cout << '\n';
  if (*settings.getHelp() != '\0') {
    std::cout << '\n';
    writeText(std::cout, settings.getHelp(), TextKind::Help, 0);
    std::cout << '\n';
  }
  end(ui);
}

void answerDescription(const VelClConsoleUI& ui) {
  const ConsoleSettings& settings = settingsOf(ui);
  const Conventions& conventions = *settings.conventions();
  writeField("Name", calledName(ui));
  writeField("Title", textOrEmpty(conventions.texts().title));
  writeField("Description", textOrEmpty(conventions.texts().description));
  writeField("Version", textOrEmpty(conventions.choices().version));
  writeField("Conventions", conventions.choices().colors ? "yes colors" : "yes");
  writeIndented("Usage", settings.getUsage());
  writeIndented("Help", settings.getHelp());
  end(ui);
}

}  // namespace vel::consoleui
