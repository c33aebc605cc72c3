// A tool's dialogue with its user, seen from outside: ui_child runs, and its bytes and exit code are
// compared.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "platform/test/child_process.h"
#include "platform/test/scratch_directory.h"
#include "vel_include/vel_consoleui.h"

namespace {

using vel::test::ChildResult;
using vel::test::runChild;
using Variables = std::vector<std::pair<std::string, std::string>>;
using Arguments = std::vector<std::string>;

ChildResult runTool(const Arguments& arguments, Variables variables,
                    const std::string& program = "ui_child") {
  variables.insert(variables.begin(), {{"LC_ALL", "C"}, {"VEL_CONSOLEUI_QUOTE_STRINGS", ""}});
  ChildResult result = runChild(program, arguments, {.environment = variables});
  EXPECT_TRUE(result.started);
  EXPECT_FALSE(result.endedAbnormally);
  return result;
}

Variables action(const char* name, const char* param = "") {
  return {{"UI_ACTION", name}, {"UI_PARAM", param}};
}

Variables with(Variables variables, const Variables& more) {
  variables.insert(variables.end(), more.begin(), more.end());
  return variables;
}

/// A message in the layout of MessagesHaveOneLayout.
std::string block(const std::string& label, const std::string& text) {
  return "\n--------------------------------------------------------------------------\nUI_CHILD: " + label +
         ":\n          " + text + "\n";
}
std::string error(const std::string& text) {
  return block("An error occurred", text);
}
std::string fatal(const std::string& text) {
  return block("A fatal error occurred", text);
}

constexpr const char* kUsageHead = "\nUsage: UI_CHILD [-h|-H|-?|-copyright] [-quiet]\n                ";

struct Row {
  Arguments arguments;
  Variables variables;
  int exitCode;
  std::string output;
  std::string errors;
};

void expectRuns(const std::vector<Row>& rows) {
  for (const Row& row : rows) {
    const ChildResult result = runTool(row.arguments, row.variables);
    std::string inputs;
    for (const std::string& argument : row.arguments) inputs.append(argument).append(" ");
    for (const auto& [name, value] : row.variables)
      inputs.append("\n").append(name).append("=").append(value);
    EXPECT_EQ(result.exitCode, row.exitCode) << inputs;
    EXPECT_EQ(result.output, row.output) << inputs;
    EXPECT_EQ(result.errors, row.errors) << inputs;
  }
}

TEST(ConsoleUI, ShowsTheTitle) {
  expectRuns({
      {{}, {}, 0, "", ""},
      {{}, {{"UI_TITLE", "Tool"}}, 0, "\nUI_CHILD - Tool\n", ""},
      {{"-quiet"}, {{"UI_TITLE", "Tool"}, {"UI_DESCRIPTION", "turns"}}, 0, "\nUI_CHILD - Tool   turns\n", ""},
  });
}

TEST(ConsoleUI, MessagesHaveOneLayout) {
  const char* const kWarning =
      "\n--------------------------------------------------------------------------\n"
      "UI_CHILD: Warning:\n"
      "          two: w\n";
  const char* const kError =
      "\n--------------------------------------------------------------------------\n"
      "UI_CHILD: An error occurred:\n"
      "          three: 2: 3: 4: 5\n";
  const char* const kException =
      "\n--------------------------------------------------------------------------\n"
      "UI_CHILD: An exception occurred:\n"
      "          no copy: file\n"
      "  Error ID............................: FILE_COULD_NOT_COPY (1000401)\n"
      "  Error Class.........................: IO_PROBLEM\n"
      "  Error Severity......................: NORMAL\n"
      "  Recommended Action..................: RETRYDELAY\n"
      "  Cause for exception.................: the disk is full\n"
      "  Exception occured in function.......: Tool::copy, line 12\n"
      "  Exception occured in line...........: 12\n";
  expectRuns({
      {{}, action("speak"), 0, block("Informational message", "one") + kWarning + "0", kError},
      {{"-quiet"}, action("speak"), 0, std::string(kWarning) + "1", kError},
      {{"-quiets"}, action("speak"), 0, block("Informational message", "one") + kWarning + "0", kError},
      {{}, action("report"), 0, "", kException},
      {{}, action("fatal"), 7, "\a", fatal("four: last")},
      // What the library itself finds fatal goes to standard error, wherever the error stream leads.
      {{}, action("redirectErrors", "a"), 7, "absent untouched\n" + fatal("redirected"), ""},
      {{"-a"},
       action("redirectErrors", "a"),
       203,
       "",
       fatal("No value specified for command line switch: a")},
  });
}

TEST(ConsoleUI, RingsTheBellBeforeEveryEndButZero) {
  expectRuns({
      {{}, action("exit", "0"), 0, "", ""},
      {{}, action("exit", "1"), 1, "\a", ""},
      {{}, action("exit", "255"), 255, "\a", ""},
  });
}

TEST(ConsoleUI, ShowsTheCopyrightPage) {
  const std::string library =
      "\nCopyright:\n"
      "  qamc5032, operating-system services library\n"
      "\nLevel:\n"
      "  BRIM Level..........................: VELLibR5-24\n"
      "  Compile date........................: Jan 14 2009\n";
  const std::string tool =
      "\nLevel:\n"
      "  Level...............................: 1.2\n"
      "  Compile date........................: Nov 21 2026\n";
  expectRuns({
      {{"-copyright"}, {}, 201, library + "\a", ""},
      {{"x", "-copyright", "-h"},
       {{"UI_TITLE", "Tool"}, {"UI_LEVEL", "1.2"}},
       201,
       "\nUI_CHILD - Tool\n" + library + tool + "\a",
       ""},
  });
}

TEST(ConsoleUI, ShowsUsageAndHelp) {
  const std::string head = kUsageHead;
  const Variables texts = {
      {"UI_USAGE", "(-key <key> ...) [-v]\n! [-secret]\n@\n\"(say)\" [-t] ! internal\n<word>"},
      {"UI_HELP", "-key <key>  (the) \"key\"\n@ gone\n-v  verbose"}};
  const std::string usage = head +
                            "-key <key> ... [-v]\n"
                            "                 [-secret]\n"
                            "\n"
                            "                say [-t]  internal\n"
                            "                <word>";
  const std::string hidden = head + "-key <key> ... [-v]\n\n                <word>";
  const std::string help = "\nHelp: -key <key>  (the) \"key\"\n\n      -v  verbose\n\a";
  expectRuns({
      {{"-h"}, texts, 201, usage + help, ""},
      {{"-unknown", "-H"}, texts, 201, usage + help, ""},
      {{"-?"}, with(texts, {{"UI_TAGGED", "hide"}}), 201, hidden + help, ""},
      {{"-?"}, with(texts, {{"UI_TAGGED", "disable"}}), 201, hidden + help, ""},
      {{"-h"},
       {{"UI_USAGE", "! -a\n-b"}, {"UI_TAGGED", "hide"}},
       201,
       head + "-b\nHelp: Sorry, no additional help available\n\a",
       ""},
      {{}, action("usageHelp"), 0, head + "-later\nHelp: later help\n", ""},
  });
}

TEST(ConsoleUI, ChecksTheCommandLine) {
  const std::string legal = "(-key <key>) [-v]\n! [-t] \n";
  const std::string tail = std::string(kUsageHead) + "-key <key> [-v]\n";
  const std::string shown = tail + "                 [-t] \n\n\a";
  const std::string hidden = tail + "\n\a";
  const auto unknown = [](const char* text) {
    return error(std::string("Unknown command line argument: ") + text);
  };
  const auto repeated = [](const char* text) {
    return error(std::string("Illegal repetition of command line argument: ") + text);
  };
  const Variables usage = {{"UI_USAGE", legal}};
  const Variables disabled = {{"UI_USAGE", legal}, {"UI_TAGGED", "disable"}};
  expectRuns({
      {{"-key", "-5", "-quiet", "-v", "-t"}, usage, 0, "", ""},
      {{"anything", "-goes", "-goes"}, {}, 0, "", ""},
      {{"-ke", "x", "-v"}, usage, 201, shown, unknown("-ke") + unknown("x")},
      {{"-quie"}, usage, 201, shown, unknown("-quie")},
      {{"-v", "-v", "-v"}, usage, 201, shown, repeated("-v") + repeated("-v") + repeated("-v")},
      {{"-x", "-x"}, usage, 201, shown, unknown("-x") + repeated("-x") + unknown("-x")},
      {{"-quiet", "-quiet"}, usage, 201, shown, repeated("-quiet")},
      {{"-key", "a", "a"}, usage, 201, shown, unknown("a")},
      {{"-t"}, disabled, 201, hidden, error("Command line argument not allowed: -t")},
      {{"-t"}, {{"UI_USAGE", legal}, {"UI_TAGGED", "hide"}}, 0, "", ""},
      {{"-v"}, disabled, 0, "", ""},
  });
}

TEST(ConsoleUI, ReadsSwitchesAndTexts) {
  struct Switch {
    Arguments arguments;
    VelClSwitchName name;
    const char* value;  ///< null when the switch is absent
  };
  const Switch switches[] = {
      {{"-file", "a b"}, "file", "a b"}, {{"-file", "a", "-file", "b"}, "-file", "a"},
      {{"file", "a"}, "file", nullptr},  {{"-files", "a", "-fil", "b"}, "file", nullptr},
      {{"-file", "-5"}, "file", "-5"},   {{"-f", ""}, 'f', ""},
      {{"-file", "a"}, 'f', nullptr},    {{"-quiet", "a"}, 10UL, "a"},
  };
  for (const Switch& row : switches) {
    std::vector<const char*> arguments = {"tool"};
    for (const std::string& argument : row.arguments) arguments.push_back(argument.c_str());
    const VelClConsoleUI ui(static_cast<int>(arguments.size()), arguments.data());
    const char* value = "untouched";
    EXPECT_EQ(ui.hasArgSwitch(row.name), row.value != nullptr);
    EXPECT_EQ(ui.hasArgString(row.name, value), row.value != nullptr);
    EXPECT_STREQ(value, row.value != nullptr ? row.value : "untouched");
    if (row.value == nullptr) continue;
    ui.reqArgSwitch(row.name);
    ui.reqArgString(row.name, value);
    EXPECT_EQ(value, arguments[2]);  // the argument itself
  }
  const std::string missing = "No value specified for command line switch: ";
  expectRuns({
      {{"-file"}, action("string", "file"), 203, "\a", fatal(missing + "file")},
      {{"-file", "-v"}, action("reqString", "-file"), 203, "\a", fatal(missing + "-file")},
      {{"-f"}, action("string", "'f"), 203, "\a", fatal(missing + "-f")},
  });
}

TEST(ConsoleUI, ReadsNumbers) {
  struct Number {
    const char* text;
    int asShort;
    int asInt;
  };
  const Number numbers[] = {
      {"12", 12, 12},
      {"'34", 34, 34},
      {"-12", -12, -12},
      {"'-12x", -12, -12},
      {"-x", 0, 0},  // what begins with "-" passes for a number
      {"-", 0, 0},
      {"007", 7, 7},
      {"65537", 1, 65537},
      {"32768", -32768, 32768},
      {"2147483648", -1, 2147483647},
      {"99999999999", -1, 2147483647},
      {"-99999999999", 0, -2147483647 - 1},
  };
  for (const Number& number : numbers) {
    const char* const arguments[] = {"tool", "-n", number.text};
    const VelClConsoleUI ui(3, arguments);
    short asShort = 77;
    int asInt = 77;
    long asLong = 77;
    EXPECT_TRUE(ui.hasArgNumval("n", asShort) && ui.hasArgNumval('n', asInt) &&
                ui.hasArgNumval("-n", asLong));
    EXPECT_EQ(asShort, number.asShort) << number.text;
    EXPECT_EQ(asInt, number.asInt) << number.text;
    EXPECT_EQ(asLong, number.asInt) << number.text;
    ui.reqArgNumval('n', asShort);
    EXPECT_FALSE(ui.hasArgNumval("m", asShort));
    EXPECT_EQ(asShort, number.asShort) << number.text;
  }
}

TEST(ConsoleUI, RefusesWhatIsNoNumber) {
  const std::string missing = "No numeric value specified for command line switch: ";
  const std::string wrong = "Non-numeric value specified for numeric command line switch: ";
  expectRuns({
      {{"-n"}, action("int", "n"), 203, "\a", fatal(missing + "n")},
      {{"-n"}, action("reqInt", "'n"), 203, "\a", fatal(missing + "-n")},
      {{"-quiet"}, action("int", "#10"), 203, "\a", fatal(missing + "quiet")},
      {{"-n", "x"}, action("int", "n"), 204, "\a", fatal(wrong + "n")},
      {{"-n", "+1"}, action("int", "n"), 204, "\a", fatal(wrong + "n")},
      {{"-n", " 1"}, action("int", "n"), 204, "\a", fatal(wrong + "n")},
      {{"-n", "''1"}, action("int", "n"), 204, "\a", fatal(wrong + "n")},
      {{"-n", ""}, action("int", "n"), 204, "\a", fatal(wrong + "n")},
  });
}

TEST(ConsoleUI, MissesSwitches) {
  const std::string missing = "Missing command line switch: ";
  const std::string hint = "          (Specify '-h' for help)\n";
  const std::string usage = std::string(kUsageHead) + "[-a]\n\a";
  const Variables hasUsage = {{"UI_USAGE", "[-a]"}};
  expectRuns({
      {{}, action("reqSwitch", "n"), 202, "\a", fatal(missing + "n")},
      {{}, action("reqSwitch", "'n"), 202, "\a", fatal(missing + "-n")},
      {{}, action("reqString", "-n"), 202, "\a", fatal(missing + "-n")},
      {{}, action("reqInt", "#10"), 202, "\a", fatal(missing + "quiet")},
      {{"-n"}, action("reqSwitch", "n"), 0, "", ""},
      {{"-a"}, with(hasUsage, action("reqString", "n")), 201, usage, fatal(missing + "n") + hint},
      {{"-a"}, with(hasUsage, action("reqInt", "'n")), 201, usage, fatal(missing + "-n") + hint},
  });
}

const Variables kOwnCatalog = {{"UI_CATALOG", "ui_tool.txt"},
                               {"UI_BASE", "100"},
                               {"UI_TITLE", "11"},
                               {"UI_DESCRIPTION", "12"},
                               {"UI_USAGE", "13"}};

TEST(ConsoleUI, TakesItsWordsFromTheToolsCatalog) {
  const std::string title = "\nUI_CHILD - Tool   with words of its own\n";
  const std::string usage =
      "\nCall: UI_CHILD [-x|-X|-notice] [-still]\n"
      "               -file <name> [-v]";
  expectRuns({
      {{"-still", "-file", "a"}, with(kOwnCatalog, action("string", "#10")), 0, title + "= a\n", ""},
      {{"-file", "-v"},
       with(kOwnCatalog, action("string", "#10")),
       203,
       title + "\a",
       block("It broke", "Nothing follows: file")},
      {{"-X"}, kOwnCatalog, 201, title + usage + "\nMore: There is no more\n\a", ""},
      {{"-x"},
       with(kOwnCatalog, {{"UI_HELP", "14"}}),
       201,
       title + usage + "\nMore: -file <name>  a file\n\a",
       ""},
      {{"-h", "-quiet"},
       kOwnCatalog,
       201,
       title + usage + "\n\a",
       block("It failed", "What is: -h") + block("It failed", "What is: -quiet")},
      {{},
       with(kOwnCatalog, action("bool")),
       0,
       title + "  Lines read" + std::string(26, '.') + ": AYE\n",
       ""},
  });
}

TEST(ConsoleUI, ShowsOnlyATitleWithoutAnyWords) {
  const std::string failure = "UNABLE TO LOAD MESSAGE CATALOG: absent.DLL";
  const Variables none = {{"UI_CATALOG", "absent"}, {"UI_TITLE", "11"}};
  const std::string title = "\nUI_CHILD - " + failure + "\n";
  expectRuns({
      {{"-copyright", "-quiet"},
       with(none, action("speak")),
       0,
       title + block(failure, "one") + block(failure, "two: w") + "0",
       block(failure, "three: 2: 3: 4: 5")},
      // Its letters ask for help.
      {{"-U"}, none, 201, title + "\n" + failure + ": UI_CHILD \n" + failure + ": " + failure + "\n\a", ""},
      {{"-h"}, none, 0, title, ""},
  });
}

TEST(ConsoleUI, FindsTheLibrarysCatalogBesideTheProgram) {
  expectRuns({{{}, action("source"), 0, "= library\n", ""}});
}

/// Copies ui_child and the libraries beside it, but no catalog (those end in capitals), and returns the copy.
std::string copyToolTo(const vel::test::ScratchDirectory& directory) {
  const std::filesystem::path own(vel::test::ownProgram());
  const std::string program = "ui_child" + own.extension().string();
  for (const auto& file : std::filesystem::directory_iterator(own.parent_path())) {
    const std::string name = file.path().filename().string();
    if (name == program || file.path().extension() == ".dll" || name.starts_with("libqamc5032.so"))
      std::filesystem::copy_file(file.path(), directory.path(name));
  }
  return directory.path(program);
}

TEST(ConsoleUI, SpeaksFromTheBuiltInTableWithoutTheLibrarysCatalog) {
  const vel::test::ScratchDirectory directory;
  const std::string program = copyToolTo(directory);
  // The second has a meaning on POSIX only: on Windows libraries are found beside the program anyway.
  const Variables there = {{"UI_DIRECTORY", directory.path()}, {"LD_LIBRARY_PATH", directory.path()}};
  EXPECT_EQ(runTool({"-quiet"}, with(there, action("source")), program).output, "absent library\n");
  const ChildResult missing = runTool({}, with(there, action("reqSwitch", "a")), program);
  EXPECT_EQ(missing.exitCode, 202);
  EXPECT_EQ(missing.errors, fatal("Missing command line switch: a"));
  EXPECT_EQ(runTool({"-x"}, with(there, {{"UI_USAGE", "<a>"}}), program).output,
            std::string(kUsageHead) + "<a>\n\a");
}

}  // namespace
