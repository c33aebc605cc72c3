// A tool for the tests of prompts. Its arguments are prompts, worked off in turn, each a kind and what that
// takes, all as text; "-" leaves out a hint or a default, "#17" is the question of message 17:
//   prompt QUESTION HINT DEFAULT    string QUESTION DEFAULT    number QUESTION MINIMUM MAXIMUM DEFAULT
//   yesNo QUESTION y|n              key                        enter
//   again              question and default are the answer before
//   catch              from here on interruptions are only counted
//   caught             tells how many there were
//   ignore             from here on interruptions are ignored
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <string>

#include "vel_include/vel_consoleui.h"

namespace {

class Script {
 public:
  explicit Script(char** arguments) : next_(arguments) {}
  bool atEnd() const { return *next_ == nullptr; }
  const char* text() {
    if (atEnd()) std::exit(1);
    return *next_++;
  }
  const char* optional() {
    const char* word = text();
    return std::strcmp(word, "-") != 0 ? word : nullptr;
  }
  int32_t number() { return static_cast<int32_t>(std::strtol(text(), nullptr, 10)); }
  VelClUIText question() {
    const char* word = text();
    if (*word == '#') return std::strtoul(word + 1, nullptr, 10);
    return word;
  }

 private:
  char** next_;
};

void show(const char* answer) {
  std::cout << '[' << answer << "]\n";
}

void askText(VelClConsoleUI& ui, Script& script) {
  const char* question = script.text();
  const char* hint = script.optional();
  ui.prompt(question, hint, script.optional());
  show(ui.getParams().getInput());
}

void askString(VelClConsoleUI& ui, Script& script) {
  const VelClUIText question = script.question();
  show(ui.promptString(question, script.optional()));
}

void askAgain(VelClConsoleUI& ui, Script&) {
  const char* last = ui.getParams().getInput();
  show(ui.promptString(last, last));
}

void askNumber(VelClConsoleUI& ui, Script& script) {
  const VelClUIText question = script.question();
  const int32_t minimum = script.number();
  const int32_t maximum = script.number();
  show(std::to_string(ui.promptNumval(question, minimum, maximum, script.number())).c_str());
}

void askYesNo(VelClConsoleUI& ui, Script& script) {
  const VelClUIText question = script.question();
  show(ui.promptYesNo(question, *script.text() == 'y') ? "true" : "false");
}

volatile std::sig_atomic_t interruptions = 0;

extern "C" void countInterruption(int) {
  interruptions = interruptions + 1;
}

struct Prompt {
  const char* kind;
  void (*run)(VelClConsoleUI& ui, Script& script);
};

constexpr Prompt kPrompts[] = {
    {"prompt", askText},
    {"string", askString},
    {"again", askAgain},
    {"number", askNumber},
    {"yesNo", askYesNo},
    {"key", [](VelClConsoleUI& ui, Script&) { ui.promptForKey(); }},
    {"enter", [](VelClConsoleUI& ui, Script&) { ui.promptForEnter(); }},
    {"catch", [](VelClConsoleUI&, Script&) { std::signal(SIGINT, countInterruption); }},
    {"caught", [](VelClConsoleUI&, Script&) { show(std::to_string(interruptions).c_str()); }},
    {"ignore", [](VelClConsoleUI&, Script&) { std::signal(SIGINT, SIG_IGN); }},
};

void run(VelClConsoleUI& ui, Script& script) {
  const char* kind = script.text();
  for (const Prompt& prompt : kPrompts)
    if (std::strcmp(prompt.kind, kind) == 0) return prompt.run(ui, script);
  std::exit(1);
}

}  // namespace

int main(int, char** argv) {
  VelClConsoleUI ui(1, argv);
  ui.init(nullptr, nullptr, nullptr, nullptr);
  for (Script script(argv + 1); !script.atEnd();) run(ui, script);
  std::cout << "end\n";
  return 0;
}
