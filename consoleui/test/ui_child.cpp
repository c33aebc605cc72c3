// A tool for the tests of the console user interface. Environment variables control it, since the tests use
// its command line:
//   UI_CATALOG, UI_BASE                  a catalog of its own, and its message base
//   UI_DIRECTORY                         the current directory to change to
//   UI_TITLE, UI_DESCRIPTION, UI_LEVEL   for init; numbers with UI_CATALOG
//   UI_TAGGED                            "hide" or "disable"
//   UI_CONVENTIONS                       switches conventions on; a text of "v" (version "2.5"), "a"
//                                        (abbreviations), "n" (no colours) and "t" (set twice)
//   UI_FULL                              standard output cannot be written, as on a full disk
//   UI_USAGE, UI_HELP                    for handleUsageHelp; numbers with UI_CATALOG
//   UI_UTF8                              calls velUseUtf8
//   UI_ACTION, UI_PARAM                  a row of kActions, and its parameter: a switch's name, its one
//                                        letter as "'x", or its message number as "#10"
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <map>
#include <sstream>
#include <thread>

#include "vel_include/vel_consoleui.h"
#include "vel_include/vel_environment.h"
#include "vel_include/vel_utf8.h"

namespace {

const char* variable(const char* name) {
  return VelClEnvironmentVariableQueryOnly(name).getValue();
}

unsigned long number(const char* name) {
  return std::strtoul(variable(name) != nullptr ? variable(name) : "", nullptr, 10);
}

VelClSwitchName param() {
  const char* text = variable("UI_PARAM");
  if (text != nullptr && *text == '\'') return text[1];
  if (text != nullptr && *text == '#') return std::strtoul(text + 1, nullptr, 10);
  return text;
}

void showString(VelClConsoleUI& ui) {
  const char* value = "untouched";
  const bool found = ui.hasArgString(param(), value);
  std::cout << (found ? "= " : "absent ") << value << '\n';
  const char* again = value;
  if (ui.hasArgSwitch(param())) ui.reqArgString(param(), again);
  if (again != value || found != ui.hasArgSwitch(param())) std::cout << "contradiction\n";
}

template <typename Number>
void requireNumber(VelClConsoleUI& ui) {
  Number value = 0;
  ui.reqArgNumval(param(), value);
}

void showNumbers(VelClConsoleUI& ui) {
  short shortest = 77;
  int middle = 77;
  long longest = 77;
  const bool found = ui.hasArgNumval(param(), shortest) && ui.hasArgNumval(param(), middle) &&
                     ui.hasArgNumval(param(), longest);
  if (found) ui.reqArgNumval(param(), shortest);
  std::cout << (found ? "= " : "absent ") << shortest << ' ' << middle << ' ' << longest << '\n';
}

void speak(VelClConsoleUI& ui) {
  ui.info("one");
  ui.warning("two", "w");
  ui.error(std::cerr, "three", "2", "3", "4", "5");
  std::cout << ui.mustBeQuiet();
}

/// Shows each argument: s for switches, f for free arguments, and b for values.
void list(VelClConsoleUI& ui) {
  VelClArgvCheckCursor argument(ui);
  for (bool more = argument.setToFirst(); more; more = argument.setToNext())
    std::cout << (argument.isSwitch() ? 's'
                  : argument.isFree() ? 'f'
                                      : 'b')
              << ' ' << argument.getAsCString() << '\n';
}

void report(VelClConsoleUI& ui) {
  VelClException exception(FILE_COULD_NOT_COPY, VelEnErrorClass::IO_PROBLEM, VelEnErrorSeverity::NORMAL,
                           VelEnErrorAction::RETRYDELAY, "the disk is full");
  exception.setOrigin("Tool::copy, line 12", 12);
  ui.exception(exception, "no copy", "file");
}

/// The library writes its own fatal messages to standard error, and those of the tool to the error stream.
void redirectErrors(VelClConsoleUI& ui) {
  static std::ostringstream bells;
  ui.setOutputStream(bells);
  ui.getParams().setErrorStream(std::cout);
  showString(ui);
  ui.fatal(7, "redirected");
}

/// Sleeps because the display appears by the clock, a second after the start.
void progress(VelClConsoleUI& ui, int delayMs) {
  // The steps of an earlier display do not count.
  ui.progressStart(4, "Other work");
  ui.progressStep(3);
  ui.progressStart(4, "Working");
  for (int step = 0; step < 4; ++step) {
    std::this_thread::sleep_for(std::chrono::milliseconds(delayMs));
    ui.progressStep();
  }
  ui.progressStop();
  std::cerr << "next line\n";
}

const char* text = nullptr;
int integer = 0;

const std::map<std::string, void (*)(VelClConsoleUI& ui)> kActions = {
    {"reqSwitch", [](VelClConsoleUI& ui) { ui.reqArgSwitch(param()); }},
    {"string", showString},
    {"reqString", [](VelClConsoleUI& ui) { ui.reqArgString(param(), text); }},
    {"numbers", showNumbers},
    {"int", [](VelClConsoleUI& ui) { ui.hasArgNumval(param(), integer); }},
    {"long",
     [](VelClConsoleUI& ui) {
       long value = 0;
       ui.hasArgNumval(param(), value);
     }},
    {"reqShort", requireNumber<short>},
    {"reqInt", requireNumber<int>},
    {"reqLong", requireNumber<long>},
    {"list", list},
    {"style",
     [](VelClConsoleUI& ui) {
       std::ostringstream other;
       std::streambuf* const own = std::cout.rdbuf(other.rdbuf());
       const std::string redirected = ui.style(std::cout, VelEnTextStyle::GOOD);
       std::cout.rdbuf(own);
       std::cout << redirected << ui.style(std::cout, VelEnTextStyle::GOOD) << "good"
                 << ui.style(std::cout, VelEnTextStyle::PLAIN) << ui.style(other, VelEnTextStyle::GOOD)
                 << ui.style(std::cout, VelEnTextStyle{99}) << '\n';
     }},
    {"askNumber", [](VelClConsoleUI& ui) { std::cout << ui.promptNumval("How many", 1, 9, 5) << '\n'; }},
    {"format", [](VelClConsoleUI& ui) { ui.format("Lines", 3); }},
    {"speak", speak},
    {"report", report},
    {"fatal", [](VelClConsoleUI& ui) { ui.fatal(7, "four", "last"); }},
    {"exit", [](VelClConsoleUI& ui) { ui.processExit(static_cast<int>(number("UI_PARAM"))); }},
    {"usageHelp", [](VelClConsoleUI& ui) { ui.displayUsageHelp("-later", "later help", false); }},
    {"redirectErrors", redirectErrors},
    {"source",
     [](VelClConsoleUI& ui) { std::cout << (ui.getMessageCatalog().isValid() ? "library\n" : "table\n"); }},
    {"quiet", [](VelClConsoleUI& ui) { std::cout << (ui.mustBeQuiet() ? "quiet\n" : "loud\n"); }},
    {"bool", [](VelClConsoleUI& ui) { ui.formatBool(15UL, true); }},
    {"fastProgress", [](VelClConsoleUI& ui) { progress(ui, 1); }},
    {"slowProgress", [](VelClConsoleUI& ui) { progress(ui, 350); }},
};

void useConventions(VelClConsoleUI& ui, const std::string& wanted) {
  const auto isWanted = [&](char c) { return wanted.find(c) != std::string::npos; };
  for (int i = isWanted('t') ? 0 : 1; i < 2; ++i)
    ui.useConventions({.version = isWanted('v') ? "2.5" : nullptr,
                       .colors = !isWanted('n'),
                       .abbreviations = isWanted('a')});
}

/// `words` returns the text of a variable, or its number as that of a message.
template <typename Words>
int run(VelClConsoleUI& ui, Words words) {
  if (variable("UI_CONVENTIONS") != nullptr) useConventions(ui, variable("UI_CONVENTIONS"));
  const char* level = variable("UI_LEVEL");
  ui.init(words("UI_TITLE"), words("UI_DESCRIPTION"), level, level != nullptr ? "Nov 21 2026" : nullptr);
  const std::string tagged = variable("UI_TAGGED") != nullptr ? variable("UI_TAGGED") : "";
  if (tagged == "hide") ui.hideTaggedLines();
  if (tagged == "disable") ui.disableTaggedLines();
  ui.handleUsageHelp(words("UI_USAGE"), words("UI_HELP"));
  if (const char* wanted = variable("UI_ACTION")) kActions.at(wanted)(ui);
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  if (variable("UI_UTF8") != nullptr) velUseUtf8();
  if (variable("UI_FULL") != nullptr) std::cout.setstate(std::ios::badbit);
  if (variable("UI_DIRECTORY") != nullptr) std::filesystem::current_path(variable("UI_DIRECTORY"));
  if (const char* catalog = variable("UI_CATALOG")) {
    VelClConsoleUI ui(argc, argv, VelClFilename(catalog), number("UI_BASE"));
    return run(ui, number);
  }
  VelClConsoleUI ui(argc, argv);
  return run(ui, variable);
}
