// A tool for the tests of prompts. Its arguments are prompts, executed in order: a kind and the parameters of
// that kind. "-" is null, and "#17" is the question in message 17:
//   prompt QUESTION HINT DEFAULT    string QUESTION DEFAULT    number QUESTION MINIMUM MAXIMUM DEFAULT
//   yesNo QUESTION y|n              key                        enter
//   again              the previous answer is the question and the default
//   catch              counts interruptions from now on
//   caught             shows their number
//   ignore             ignores interruptions from now on
#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <iostream>

#include "vel_include/vel_consoleui.h"

namespace {

volatile std::sig_atomic_t interruptions = 0;

extern "C" void countInterruption(int) {
  interruptions = interruptions + 1;
}

const char* optional(const char* word) {
  return std::strcmp(word, "-") != 0 ? word : nullptr;
}

VelClUIText question(const char* word) {
  if (*word == '#') return std::strtoul(word + 1, nullptr, 10);
  return optional(word);
}

int32_t number(const char* word) {
  return static_cast<int32_t>(std::strtol(word, nullptr, 10));
}

template <typename Answer>
void show(const Answer& answer) {
  std::cout << std::boolalpha << '[' << answer << "]\n";
}

struct Prompt {
  const char* kind;
  int wordCount;
  void (*run)(VelClConsoleUI& ui, char** words);
};

constexpr Prompt kPrompts[] = {
    {"prompt", 3,
     [](VelClConsoleUI& ui, char** words) {
       ui.prompt(optional(words[0]), optional(words[1]), optional(words[2]));
       show(ui.getParams().getInput());
     }},
    {"string", 2,
     [](VelClConsoleUI& ui, char** words) { show(ui.promptString(question(words[0]), optional(words[1]))); }},
    {"again", 0,
     [](VelClConsoleUI& ui, char**) {
       const char* last = ui.getParams().getInput();
       show(ui.promptString(last, last));
     }},
    {"number", 4,
     [](VelClConsoleUI& ui, char** words) {
       show(ui.promptNumval(question(words[0]), number(words[1]), number(words[2]), number(words[3])));
     }},
    {"yesNo", 2,
     [](VelClConsoleUI& ui, char** words) { show(ui.promptYesNo(question(words[0]), *words[1] == 'y')); }},
    {"key", 0, [](VelClConsoleUI& ui, char**) { ui.promptForKey(); }},
    {"enter", 0, [](VelClConsoleUI& ui, char**) { ui.promptForEnter(); }},
    {"catch", 0, [](VelClConsoleUI&, char**) { std::signal(SIGINT, countInterruption); }},
    {"caught", 0, [](VelClConsoleUI&, char**) { show(interruptions); }},
    {"ignore", 0, [](VelClConsoleUI&, char**) { std::signal(SIGINT, SIG_IGN); }},
};

}  // namespace

int main(int argc, char** argv) {
  VelClConsoleUI ui(1, argv);
  ui.init(nullptr, nullptr, nullptr, nullptr);
  for (int at = 1; at < argc;) {
    const char* kind = argv[at++];
    const auto* const prompt = std::ranges::find_if(
        kPrompts, [kind](const Prompt& row) { return std::strcmp(row.kind, kind) == 0; });
    if (prompt == std::end(kPrompts) || at + prompt->wordCount > argc) return 1;
    prompt->run(ui, argv + at);
    at += prompt->wordCount;
  }
  std::cout << "end\n";
  return 0;
}
