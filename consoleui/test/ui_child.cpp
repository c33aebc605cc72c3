// A tool for the tests of the console user interface. Its command line is the matter of the tests, so
// what it does is told by environment variables:
//   UI_CATALOG, UI_BASE                  a catalog of its own, and its message base
//   UI_DIRECTORY                         where to go first
//   UI_TITLE, UI_DESCRIPTION, UI_LEVEL   for init; numbers with UI_CATALOG
//   UI_TAGGED                            "hide" or "disable"
//   UI_USAGE, UI_HELP                    for handleUsageHelp; numbers with UI_CATALOG
//   UI_ACTION, UI_PARAM                  a row of kActions, and its parameter: a switch's name, its one
//                                        letter as "'x", or its message number as "#10"
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <memory>
#include <sstream>
#include <thread>

#include "vel_include/vel_consoleui.h"

namespace {

const char* variable(const char* name) {
  return std::getenv(name);
}

unsigned long number(const char* text) {
  return text != nullptr ? std::strtoul(text, nullptr, 10) : 0;
}

VelClSwitchName param() {
  const char* text = variable("UI_PARAM");
  if (text != nullptr && *text == '\'') return text[1];
  if (text != nullptr && *text == '#') return number(text + 1);
  return text;
}

void tell(bool found, const char* value) {
  std::cout << (found ? "= " : "absent ") << value << '\n';
}

void tellNumber(const VelClConsoleUI& ui, bool required) {
  int value = 77;
  bool found = true;
  if (required)
    ui.reqArgNumval(param(), value);
  else
    found = ui.hasArgNumval(param(), value);
  tell(found, std::to_string(value).c_str());
}

void tellString(const VelClConsoleUI& ui, bool required) {
  const char* value = "untouched";
  bool found = true;
  if (required)
    ui.reqArgString(param(), value);
  else
    found = ui.hasArgString(param(), value);
  tell(found, value);
}

void speak(VelClConsoleUI& ui) {
  ui.info("one");
  ui.warning("two", "w");
  ui.error(std::cerr, "three", "2", "3", "4", "5");
  std::cout << ui.mustBeQuiet();
}

void report(VelClConsoleUI& ui) {
  VelClException exception(FILE_COULD_NOT_COPY, VelEnErrorClass::IO_PROBLEM, VelEnErrorSeverity::NORMAL,
                           VelEnErrorAction::RETRYDELAY, "the disk is full");
  exception.setOrigin("Tool::copy, line 12", 12);
  ui.exception(exception, "no copy", "file");
}

/// The library writes its own fatal messages to standard error, the tool's to the error stream.
void redirectErrors(VelClConsoleUI& ui) {
  static std::ostringstream bells;
  ui.setOutputStream(bells);
  ui.getParams().setErrorStream(std::cout);
  tellString(ui, false);
  ui.fatal(7, "redirected");
}

void progress(VelClConsoleUI& ui, int delayMs) {
  ui.progressStart(4, "Working");
  for (int step = 0; step < 4; ++step) {
    std::this_thread::sleep_for(std::chrono::milliseconds(delayMs));
    ui.progressStep();
  }
  ui.progressStop();
  std::cerr << "next line\n";
}

struct Action {
  const char* name;
  void (*run)(VelClConsoleUI& ui);
};

constexpr Action kActions[] = {
    {"reqSwitch", [](VelClConsoleUI& ui) { ui.reqArgSwitch(param()); }},
    {"string", [](VelClConsoleUI& ui) { tellString(ui, false); }},
    {"reqString", [](VelClConsoleUI& ui) { tellString(ui, true); }},
    {"int", [](VelClConsoleUI& ui) { tellNumber(ui, false); }},
    {"reqInt", [](VelClConsoleUI& ui) { tellNumber(ui, true); }},
    {"speak", speak},
    {"report", report},
    {"fatal", [](VelClConsoleUI& ui) { ui.fatal(7, "four", "last"); }},
    {"exit", [](VelClConsoleUI& ui) { ui.processExit(static_cast<int>(number(variable("UI_PARAM")))); }},
    {"usageHelp", [](VelClConsoleUI& ui) { ui.displayUsageHelp("-later", "later help", false); }},
    {"redirectErrors", redirectErrors},
    {"source", [](VelClConsoleUI& ui) { tell(ui.getMessageCatalog().isValid(), "library"); }},
    {"bool", [](VelClConsoleUI& ui) { ui.formatBool(15UL, true); }},
    {"fastProgress", [](VelClConsoleUI& ui) { progress(ui, 1); }},
    {"slowProgress", [](VelClConsoleUI& ui) { progress(ui, 350); }},
};

void start(VelClConsoleUI& ui) {
  const char* level = variable("UI_LEVEL");
  const char* date = level != nullptr ? "Nov 21 2026" : nullptr;
  if (variable("UI_CATALOG") != nullptr)
    ui.init(number(variable("UI_TITLE")), number(variable("UI_DESCRIPTION")), level, date);
  else
    ui.init(variable("UI_TITLE"), variable("UI_DESCRIPTION"), level, date);
  const std::string tagged = variable("UI_TAGGED") != nullptr ? variable("UI_TAGGED") : "";
  if (tagged == "hide") ui.hideTaggedLines();
  if (tagged == "disable") ui.disableTaggedLines();
  if (variable("UI_CATALOG") != nullptr)
    ui.handleUsageHelp(number(variable("UI_USAGE")), number(variable("UI_HELP")));
  else
    ui.handleUsageHelp(variable("UI_USAGE"), variable("UI_HELP"));
}

int run(VelClConsoleUI& ui) {
  start(ui);
  const char* wanted = variable("UI_ACTION");
  if (wanted == nullptr) return 0;
  for (const Action& action : kActions) {
    if (std::strcmp(action.name, wanted) != 0) continue;
    action.run(ui);
    return 0;
  }
  return 1;
}

}  // namespace

int main(int argc, char** argv) {
  if (variable("UI_DIRECTORY") != nullptr) std::filesystem::current_path(variable("UI_DIRECTORY"));
  std::unique_ptr<VelClConsoleUI> ui;
  if (const char* catalog = variable("UI_CATALOG"))
    ui = std::make_unique<VelClConsoleUI>(argc, argv, VelClFilename(catalog), number(variable("UI_BASE")));
  else
    ui = std::make_unique<VelClConsoleUI>(argc, argv);
  return run(*ui);
}
