// Asks the user questions in one layout and reads the answers as text, number, yes or no:
//
//   --------------------------------------------------------------------------
//    How many (min.: 1, max.: 9):
//    (default: 5): 7
//
// An empty answer selects the default. A wrong one is refused and the question asked again, but not at the
// end of input, where that would never end: there the default is the answer.
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <iostream>

#include "base/ascii.h"
#include "base/short_text.h"
#include "consoleui/console_ui_format.h"
#include "consoleui/console_ui_messages.h"
#include "consoleui/console_ui_words.h"
#include "consoleui/whole_number.h"
#include "foundation/allocator.h"
#include "platform/console.h"

namespace vel::consoleui {
namespace {

/// A null hint or default is left out.
struct Question {
  const char* text;
  const char* hint;
  const char* defaultAnswer;
};

using Traits = std::istream::traits_type;

/// Reads the next character of standard input. A signal that the tool handles can interrupt the read. That
/// must not look like the end of input, which selects the default, so the read is repeated.
Traits::int_type nextCharacter() {
  for (;;) {
    // The state of the stream may be left from a failed read of the tool.
    std::cin.clear();
    errno = 0;
    const auto c = std::cin.get();
    if (c != Traits::eof() || errno != EINTR) return c;
  }
}

/// The answer to one prompt. It has its own buffer, because the question and the default may be in the
/// parameters' input buffer, from an earlier prompt.
class Answer {
 public:
  const char* text() const { return text_; }
  bool isEmpty() const { return text_[0] == '\0'; }
  char firstLetter() const { return toAsciiUpper(text_[0]); }
  /// Whether it starts with a digit, or with "-" and a digit.
  bool isNumeric() const { return isAsciiDigit(text_[text_[0] == '-' ? 1 : 0]); }
  std::int32_t number() const { return parseInt32(text_); }
  /// What is wrong with the answer as a number. Strictly, all of it must be one.
  NumberFault faultAsNumber(NumberLimits limits, bool isStrict) const {
    std::int32_t ignored = 0;
    if (isStrict) return parseWholeNumber(text_, limits, ignored);
    if (!isNumeric()) return NumberFault::NotANumber;
    return number() < limits.minimum || number() > limits.maximum ? NumberFault::OutOfRange
                                                                  : NumberFault::None;
  }

  /// Replaces the answer. A longer text is cut.
  void assign(const char* text) { store(text, std::strlen(text)); }

  /// Reads a line of standard input without its line break, LF or CR LF. The rest of a line that is too long
  /// is dropped. Returns false if there was no character before the end of input.
  bool readLine() {
    bool found = false;
    std::size_t length = 0;
    char last = '\0';
    for (auto c = nextCharacter(); c != Traits::eof(); c = nextCharacter()) {
      found = true;
      if (c == '\n') break;
      if (c == '\0') continue;
      last = Traits::to_char_type(c);
      // Characters beyond the room are counted, too: a CR among them must not cost a stored character.
      if (length < kRoom) text_[length] = last;
      ++length;
    }
    if (last == '\r' && !std::cin.eof()) --length;
    store(text_, length);
    return found;
  }

 private:
  static constexpr std::size_t kRoom = VelClConsoleUIParams::kMaxInputLength;

  void store(const char* text, std::size_t length) {
    length = std::min(length, kRoom);
    std::memmove(text_, text, length);
    text_[length] = '\0';
  }

  char text_[kRoom + 1] = "";
};

void writeQuestion(std::ostream& stream, const Question& question, const Words& words) {
  writeSeparatorLine(stream);
  stream << ' ' << vel::textOrEmpty(question.text);
  if (question.hint != nullptr) stream << " (" << question.hint << ')';
  stream << ":\n ";
  if (question.defaultAnswer != nullptr)
    stream << '(' << words[Word::Default] << ": " << question.defaultAnswer << "): ";
  stream.flush();
}

/// Asks and reads the answer. Returns false at the end of input, with the default as the answer.
bool ask(std::ostream& stream, const Question& question, const Words& words, Answer& answer) {
  writeQuestion(stream, question, words);
  const bool answered = answer.readLine();
  if (answer.isEmpty() && question.defaultAnswer != nullptr) answer.assign(question.defaultAnswer);
  return answered;
}

/// Asks the user to press a key before the tool goes on.
void writeInvitation(std::ostream& stream, const VelClMessage& invitation) {
  stream << ' ' << invitation << std::endl;
  std::cout.flush();
  std::cerr.flush();
}

}  // namespace

String limitsHint(std::int32_t minimum, std::int32_t maximum, const Words& words) {
  String hint = words[Word::Minimum].getAsCString();
  hint.append(": ").append(NumberText(static_cast<long long>(minimum)).text);
  hint.append(", ").append(words[Word::Maximum].getAsCString());
  return hint.append(": ").append(NumberText(static_cast<long long>(maximum)).text);
}

}  // namespace vel::consoleui

using vel::consoleui::Answer;
using vel::consoleui::ask;
using vel::consoleui::NumberFault;
using vel::consoleui::NumberText;
using vel::consoleui::ResolvedText;
using vel::consoleui::settingsOf;
using vel::consoleui::Word;

void VelClConsoleUI::prompt(const char* question, const char* hint, const char* defaultAnswer) const {
  Answer answer;
  ask(settingsOf(*this).questionStream(), {question, hint, defaultAnswer}, words(), answer);
  params_->setInput(answer.text());
}

const char* VelClConsoleUI::promptString(VelClUIText question, const char* defaultAnswer) const {
  prompt(ResolvedText(question, getMessageCatalog()).get(), nullptr, defaultAnswer);
  return params_->getInput();
}

int32_t VelClConsoleUI::promptNumval(VelClUIText question, int32_t minimum, int32_t maximum,
                                     int32_t defaultValue) const {
  const ResolvedText text(question, getMessageCatalog());
  const vel::String hint = vel::consoleui::limitsHint(minimum, maximum, words());
  const NumberText defaultText(static_cast<long long>(defaultValue));
  std::ostream& stream = settingsOf(*this).questionStream();
  const bool isStrict = settingsOf(*this).conventions() != nullptr;
  Answer answer;
  while (ask(stream, {text.get(), hint.c_str(), defaultText.text}, words(), answer)) {
    const NumberFault fault = answer.faultAsNumber({minimum, maximum}, isStrict);
    if (fault == NumberFault::None) break;
    error(stream, words()[Word::InvalidValue].getAsCString(),
          words()[fault == NumberFault::OutOfRange ? Word::EnterWithinLimits : Word::EnterNumber]
              .getAsCString());
  }
  params_->setInput(answer.text());
  return answer.number();
}

bool VelClConsoleUI::promptYesNo(VelClUIText question, bool defaultAnswer) const {
  const ResolvedText text(question, getMessageCatalog());
  const VelClMessage hint = words()[Word::YesOrNo];
  const char yes = *words()[Word::Yes].getAsCString();
  const char no = *words()[Word::No].getAsCString();
  const char defaultText[] = {defaultAnswer ? yes : no, '\0'};
  std::ostream& stream = settingsOf(*this).questionStream();
  Answer answer;
  bool answered;
  while ((answered = ask(stream, {text.get(), hint.getAsCString(), defaultText}, words(), answer))) {
    if (answer.firstLetter() == yes || answer.firstLetter() == no) break;
    error(stream, words()[Word::InvalidValue].getAsCString(), words()[Word::PleaseUse].getAsCString(),
          hint.getAsCString());
  }
  params_->setInput(answer.text());
  return answered ? answer.firstLetter() == yes : defaultAnswer;
}

void VelClConsoleUI::promptForKey() const {
  vel::consoleui::writeInvitation(settingsOf(*this).questionStream(), words()[Word::PressAnyKey]);
  if (vel::platform::waitForConsoleKey()) return;
  // Standard input is not a terminal: in a pipe or file one character stands for the key.
  vel::consoleui::nextCharacter();
}

void VelClConsoleUI::promptForEnter() const {
  vel::consoleui::writeInvitation(settingsOf(*this).questionStream(), words()[Word::PressEnter]);
  Answer().readLine();
}
