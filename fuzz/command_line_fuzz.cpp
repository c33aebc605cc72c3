// Command lines, compared with a slow splitter that first classifies every character. The input is a
// NUL-terminated command line, and texts to build another one from.
#include "environment/command_line.h"
#include "fuzz/bytes.h"
#include "vel_include/vel_process.h"
#include "vel_include/vel_quoting.h"

namespace fuzz::command_line {

namespace {

using Texts = std::vector<std::string>;

bool isBlank(char c) {
  return c == ' ' || c == '\t';
}

/// A character of an argument, or a quote that opens or closes.
struct Symbol {
  char c;
  bool isMark;
};

std::vector<Symbol> symbolsOf(std::string_view text) {
  std::vector<Symbol> symbols;
  while (!text.empty()) {
    const std::size_t run = std::min(text.find_first_not_of('\\'), text.size());
    const bool isBeforeQuote = run < text.size() && text[run] == '"';
    symbols.insert(symbols.end(), isBeforeQuote ? run / 2 : run, Symbol{'\\', false});
    if (run < text.size()) symbols.push_back({text[run], isBeforeQuote && run % 2 == 0});
    text.remove_prefix(std::min(run + 1, text.size()));
  }
  return symbols;
}

std::string programOf(std::string_view& line) {
  std::string program;
  std::size_t at = 0, quotes = 0;
  for (; at < line.size() && (quotes % 2 != 0 || !isBlank(line[at])); ++at)
    line[at] == '"' ? void(++quotes) : program.push_back(line[at]);
  line.remove_prefix(at);
  return program;
}

Texts split(std::string_view line) {
  Texts texts = {programOf(line)};
  const std::vector<Symbol> symbols = symbolsOf(line);
  bool isQuoted = false, isOpen = false;
  for (std::size_t at = 0; at < symbols.size(); ++at) {
    const auto [c, isMark] = symbols[at];
    if (!isMark && !isQuoted && isBlank(c)) {
      isOpen = false;
      continue;
    }
    if (!isOpen) texts.emplace_back();
    isOpen = true;
    const bool isDoubled = isMark && isQuoted && at + 1 < symbols.size() && symbols[at + 1].isMark;
    if (isDoubled) ++at;
    if (!isMark || isDoubled)
      texts.back().push_back(c);
    else
      isQuoted = !isQuoted;
  }
  return texts;
}

Texts argumentsOf(const char* line) {
  const vel::environment::Arguments arguments(line);
  require(arguments.get()[arguments.count()] == nullptr);
  return {arguments.get(), arguments.get() + arguments.count()};
}

/// Whether this text round-trips as an argument. Intentional: only blanks cause quotes, and only one
/// backslash at the end is doubled.
bool isKept(std::string_view text) {
  return !text.empty() && text.find_first_of("\"\t") == std::string_view::npos &&
         (text.find(' ') == std::string_view::npos || !text.ends_with("\\\\"));
}

class Process : public VelClNewProcessABase {
 public:
  explicit Process(const VelClExeFile& program) : VelClNewProcessABase(program) {}
  bool launch() override { return false; }
  const char* line() {
    prepareLaunch();
    return getArgs();
  }
};

void run(Bytes input) {
  const Text line = input.text();
  require(argumentsOf(line) == split(line.view()));
  static const VelClExeFile program("no such program");
  Process process(program);
  Process quotedProcess(program);
  Texts expected = {"no such program.EXE"}, all = expected;
  for (const Text& text : input.texts()) {
    quotedProcess.addArgument(velQuotedForAddArgument(text.view()).c_str());
    all.emplace_back(text.view());
    if (!isKept(text.view())) continue;
    process.addArgument(text);
    expected.emplace_back(text.view());
  }
  require(argumentsOf(process.line()) == expected);
  require(argumentsOf(quotedProcess.line()) == all);
}

const Target target("command_line", run);

}  // namespace

}  // namespace fuzz::command_line
