// Shows messages in the fixed layout and ends the process after fatal ones:
//
//   --------------------------------------------------------------------------
//   TOOL: An error occurred:
//         Unknown command line argument: -x
//
// The layout is the same for every tool and every kind of message. Each kind of message has its stream: info
// and warning the output stream, fatal and exception the error stream, error the one that the tool passes.
#include "consoleui/console_ui_messages.h"

#include <iostream>

#include "base/usage_text.h"
#include "consoleui/console_ui_format.h"
#include "consoleui/console_ui_words.h"

namespace vel::consoleui {

void writeSeparatorLine(std::ostream& stream) {
  constexpr std::size_t kSeparatorLength = 74;
  writeFill(stream, kSeparatorLength, '-');
  stream << '\n';
}

void writeMessage(std::ostream& stream, const ConsoleSettings& settings, const char* label,
                  VelEnTextStyle style, const MessageTexts& message) {
  stream << '\n';
  writeSeparatorLine(stream);
  stream << settings.getProcessName() << ": " << settings.style(stream, style) << label << ':'
         << settings.style(stream, VelEnTextStyle::PLAIN) << '\n';
  writeFill(stream, settings.getIndentation(), ' ');
  const char* separator = "  ";
  for (const char* text : message.texts) {
    if (text == nullptr) continue;
    stream << separator << text;
    separator = ": ";
  }
  // Flushed, so that a message is seen even if the tool crashes next.
  stream << std::endl;
}

}  // namespace vel::consoleui

using vel::consoleui::settingsOf;
using vel::consoleui::Word;
using vel::consoleui::writeMessage;

void VelClConsoleUI::info(const char* text, const char* text2, const char* text3, const char* text4,
                          const char* text5) const {
  if (mustBeQuiet()) return;
  writeMessage(settingsOf(*this).messageStream(), settingsOf(*this),
               words()[Word::Information].getAsCString(), VelEnTextStyle::HEADING,
               {{text, text2, text3, text4, text5}});
}

void VelClConsoleUI::warning(const char* text, const char* text2, const char* text3, const char* text4,
                             const char* text5) const {
  writeMessage(settingsOf(*this).messageStream(), settingsOf(*this), words()[Word::Warning].getAsCString(),
               VelEnTextStyle::CAUTION, {{text, text2, text3, text4, text5}});
}

void VelClConsoleUI::error(std::ostream& stream, const char* text, const char* text2, const char* text3,
                           const char* text4, const char* text5) const {
  writeMessage(stream, settingsOf(*this), words()[Word::ErrorOccurred].getAsCString(), VelEnTextStyle::BAD,
               {{text, text2, text3, text4, text5}});
}

void VelClConsoleUI::fatal(int exitCode, const char* text, const char* text2, const char* text3,
                           const char* text4, const char* text5) const {
  writeMessage(params_->getErrorStream(), settingsOf(*this), words()[Word::FatalErrorOccurred].getAsCString(),
               VelEnTextStyle::BAD, {{text, text2, text3, text4, text5}});
  processExit(exitCode);
}

void VelClConsoleUI::exception(const VelClException& exception, const char* text, const char* text2,
                               const char* text3, const char* text4, const char* text5) const {
  std::ostream& stream = params_->getErrorStream();
  writeMessage(stream, settingsOf(*this), words()[Word::ExceptionOccurred].getAsCString(),
               VelEnTextStyle::BAD, {{text, text2, text3, text4, text5}});
  vel::consoleui::writeException(stream, *params_, words(), exception, true);
}

// With a usage string the usage is shown, too, and the exit code is that of a bad command line. Without one
// it is the code of a missing switch.
void VelClConsoleUI::fatalMissingArg(const char* switchName) const {
  if (*getUsage() == '\0')
    fatalArgument(vel::consoleui::kExitMissingSwitch, static_cast<uint32_t>(Word::MissingSwitch), switchName);
  writeMessage(std::cerr, settingsOf(*this), words()[Word::FatalErrorOccurred].getAsCString(),
               VelEnTextStyle::BAD, {{words()[Word::MissingSwitch].getAsCString(), switchName}});
  vel::writeFill(std::cerr, params_->getIndentation() + 2, ' ');
  std::cerr << words()[Word::HelpHint] << std::endl;
  exitWithUsage();
}
