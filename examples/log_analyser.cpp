// Counts the lines of a log that match patterns. The log is read line by line, so its size does not matter:
//
//   example_log_analyser --file=server.log timeout "* ERROR *"
//   zcat server.log.gz | example_log_analyser -ignorecase -show timeout
#include <vel.h>

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <iostream>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr const char* kUsage =
    "[(-file <name>)] [-ignorecase] [-show]\n"
    "<pattern> ...";

constexpr const char* kHelp =
    "-file <name>  the log; without it, or if it is -, standard input is read\n"
    "-ignorecase   ignore the case of ASCII letters\n"
    "-show         also print the matching lines, each with its number\n"
    "<pattern>     a text that is searched in each line; a pattern with * or ? must match the whole line\n"
    "@\n"
    "Exit codes: 0 a line matches, 1 no line matches, 2 the log cannot be read,\n"
    "201 to 204 the command line is wrong.";

enum ExitCode : int { kFound = 0, kNothingFound = 1, kUnreadable = 2 };

/// A pattern of the command line and the number of lines that it matches.
struct Counter {
  const char* pattern;
  std::unique_ptr<VelClStringMatchABase> matcher;
  std::uint64_t lines = 0;
};

/// Note the two flags: one class is told to ignore the case, the other one to respect it.
std::unique_ptr<VelClStringMatchABase> matcherFor(const char* pattern, bool ignoreCase) {
  const bool isWildcard = std::string_view(pattern).find_first_of("*?") != std::string_view::npos;
  if (isWildcard) return std::make_unique<VelClStringMatchWildcards>(pattern, !ignoreCase);
  return std::make_unique<VelClStringSearch>(pattern, ignoreCase);
}

std::vector<Counter> countersFor(const VelClConsoleUI& ui) {
  std::vector<Counter> counters;
  const bool ignoreCase = ui.hasArgSwitch("ignorecase");
  VelClArgvFreeCursor argument(ui);
  // The cursor is not on a free argument before this call.
  for (bool more = argument.setToFirst(); more; more = argument.setToNext())
    counters.push_back({argument.getAsCString(), matcherFor(argument.getAsCString(), ignoreCase)});
  return counters;
}

/// Counts all lines in `total`. Returns false if the stream cannot be read to its end.
bool analyse(std::istream& log, bool show, std::vector<Counter>& counters, std::uint64_t& total) {
  for (std::string line; std::getline(log, line);) {
    ++total;
    if (line.ends_with('\r')) line.pop_back();
    // The search ends at a NUL, which a damaged log may contain.
    std::ranges::replace(line, '\0', ' ');
    bool matches = false;
    for (Counter& counter : counters) {
      if (counter.matcher->getPattern(line.c_str()) == nullptr) continue;
      ++counter.lines;
      matches = true;
    }
    if (show && matches) std::cout << total << ": " << line << '\n';
  }
  return !log.bad();
}

}  // namespace

int main(int argc, char** argv) {
  VelClConsoleUI ui(argc, argv);
  ui.useConventions({.version = "1.0"});
  ui.init("Log analyser", "counts the lines that match patterns", "1.0", "Nov 22 2026");
  ui.handleUsageHelp(kUsage, kHelp);

  std::vector<Counter> counters = countersFor(ui);
  if (counters.empty()) ui.fatalMissingArg("<pattern>");

  const char* name = "-";
  ui.hasArgString("file", name);
  const bool isStandardInput = std::string_view(name) == "-";
  std::ifstream file;
  if (!isStandardInput) file.open(name, std::ios::binary);
  if (!isStandardInput && !file) ui.fatal(kUnreadable, "Cannot open the log", name);

  std::uint64_t total = 0;
  if (!analyse(isStandardInput ? std::cin : file, ui.hasArgSwitch("show"), counters, total))
    ui.fatal(kUnreadable, "Cannot read the log to its end", name);

  bool found = false;
  for (const Counter& counter : counters) {
    std::cout << counter.lines << " of " << total << " lines match " << counter.pattern << '\n';
    found = found || counter.lines != 0;
  }
  if (!std::cout.flush()) ui.fatal(kUnreadable, "Cannot write the result");
  return found ? kFound : kNothingFound;
}
