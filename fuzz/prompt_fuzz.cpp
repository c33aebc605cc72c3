// Answers prompts with any bytes, and compares the results with a model. The input is a NUL-terminated text
// in which each character chooses a prompt, the question, the default, and the bytes on standard input.
#include <iostream>

#include "fuzz/bytes.h"
#include "platform/test/streams.h"
#include "vel_include/vel_consoleui.h"

namespace fuzz::prompt {

namespace {

constexpr std::size_t kMaxAnswerLength = 80;

/// A model of standard input as the prompts must interpret it.
class Typed {
 public:
  explicit Typed(std::string_view text) : rest_(text) {}

  /// Returns the answer in the next line, or nothing at the end of the input.
  std::optional<std::string> line() {
    if (rest_.empty()) return std::nullopt;
    const std::size_t end = rest_.find('\n');
    std::string line(rest_.substr(0, end));
    rest_.remove_prefix(end == std::string_view::npos ? rest_.size() : end + 1);
    std::erase(line, '\0');
    if (end != std::string_view::npos && line.ends_with('\r')) line.pop_back();
    return line.substr(0, kMaxAnswerLength);
  }

 private:
  std::string_view rest_;
};

std::string orDefault(const std::optional<std::string>& line, const std::string& otherwise) {
  return line.value_or("").empty() ? otherwise.substr(0, kMaxAnswerLength) : *line;
}

std::optional<std::int32_t> numberOf(const std::string& answer) {
  const bool isNegative = answer.starts_with('-');
  std::int64_t number = 0;
  std::size_t at = isNegative ? 1 : 0;
  if (at == answer.size() || answer[at] < '0' || answer[at] > '9') return std::nullopt;
  for (; at < answer.size() && answer[at] >= '0' && answer[at] <= '9'; ++at)
    number = std::min(number * 10 + (answer[at] - '0'), std::int64_t{1} << 40);
  return static_cast<std::int32_t>(
      std::clamp<std::int64_t>(isNegative ? -number : number, INT32_MIN, INT32_MAX));
}

std::int32_t expectedNumber(Typed& typed, std::int32_t minimum, std::int32_t maximum,
                            std::int32_t otherwise) {
  for (;;) {
    const std::optional<std::string> line = typed.line();
    if (!line) return otherwise;
    const std::optional<std::int32_t> number = numberOf(orDefault(line, std::to_string(otherwise)));
    if (number && *number >= minimum && *number <= maximum) return *number;
  }
}

bool expectedDecision(Typed& typed, bool otherwise) {
  for (;;) {
    const std::optional<std::string> line = typed.line();
    if (!line) return otherwise;
    const char answer = orDefault(line, otherwise ? "Y" : "N")[0];
    if (answer == 'Y' || answer == 'y') return true;
    if (answer == 'N' || answer == 'n') return false;
  }
}

/// Uses the previous answer as question and as default.
void askAgain(const VelClConsoleUI& ui, Typed& typed) {
  const char* const last = ui.getParams().getInput();
  const std::string before = last;
  require(ui.promptString(last, last) == orDefault(typed.line(), before));
}

/// Makes a prompt; each continues where the previous one has stopped reading.
void ask(const VelClConsoleUI& ui, unsigned int option, const char* question, const char* otherwise,
         Typed& typed) {
  const auto limit = static_cast<std::int32_t>(option >> 3);
  switch (option % 8) {
    case 0:
      return require(ui.promptString(question, otherwise) == orDefault(typed.line(), otherwise));
    case 1:
      return require(ui.promptString(question) == typed.line().value_or(""));
    case 2:
      ui.prompt(question, otherwise, otherwise);
      return require(ui.getParams().getInput() == orDefault(typed.line(), otherwise));
    case 3:
      return askAgain(ui, typed);
    case 4:
      return require(ui.promptNumval(question, -limit, limit, 0) == expectedNumber(typed, -limit, limit, 0));
    case 5:
      return require(ui.promptNumval(nullptr, INT32_MIN, limit, limit + 1) ==
                     expectedNumber(typed, INT32_MIN, limit, limit + 1));
    case 6:
      return require(ui.promptYesNo(question, limit % 2 == 0) == expectedDecision(typed, limit % 2 == 0));
    default:
      ui.promptForEnter();
      typed.line();
  }
}

const VelClConsoleUI& userInterface() {
  static unsigned long size = 0;
  static const char* const* const table = velMsgCatGetBuiltInTable(&size);
  static const VelClConsoleUI ui(0, nullptr, VelClFilename("absent"), 0, table, size);
  return ui;
}

void run(Bytes input) {
  const Text options = input.text(), question = input.text(), otherwise = input.text();
  const vel::test::Streams streams{std::string(input.rest())};
  Typed typed(input.rest());
  const VelClConsoleUI& ui = userInterface();
  ui.getParams().setInput("");
  for (const char option : options.view().substr(0, 100))
    ask(ui, static_cast<unsigned char>(option), question, otherwise, typed);
}

const Target target("prompt", run);

}  // namespace

}  // namespace fuzz::prompt
