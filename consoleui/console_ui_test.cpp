// A tool's dialogue with its user, seen from outside: ui_child runs, and its bytes and exit code are
// compared.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <filesystem>
#include <string>
#include <vector>

#include "platform/test/child_process.h"
#include "platform/test/scratch_directory.h"
#include "platform/test/session.h"
#include "vel_include/vel_consoleui.h"

namespace {

TEST(ConsoleUI, FollowsTheSession) {
  vel::test::expectSession(VEL_TEST_DATA "test/console_ui.session");
}

TEST(ConsoleUI, ReadsSwitchesAndTexts) {
  const struct {
    std::vector<const char*> arguments;
    VelClSwitchName name;
    const char* value;  ///< null when the switch is absent
  } rows[] = {{{"-file", "a b"}, "file", "a b"}, {{"-file", "a", "-file", "b"}, "-file", "a"},
              {{"file", "a"}, "file", nullptr},  {{"-files", "a", "-fil", "b"}, "file", nullptr},
              {{"-file", "-5"}, "file", "-5"},   {{"-f", ""}, 'f', ""},
              {{"-file", "a"}, 'f', nullptr},    {{"-quiet", "a"}, 10UL, "a"}};
  for (const auto& row : rows) {
    std::vector<const char*> arguments = {"tool"};
    arguments.insert(arguments.end(), row.arguments.begin(), row.arguments.end());
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
}

// What begins with "-" passes for a number.
TEST(ConsoleUI, ReadsNumbers) {
  const struct {
    const char* text;
    int asShort, asInt;
  } rows[] = {{"99999999999", -1, INT_MAX}, {"'-12x", -12, -12}, {"12", 12, 12},
              {"-99999999999", 0, INT_MIN}, {"-12", -12, -12},   {"'34", 34, 34},
              {"2147483648", -1, INT_MAX},  {"65537", 1, 65537}, {"-x", 0, 0},
              {"32768", -32768, 32768},     {"007", 7, 7},       {"-", 0, 0}};
  for (const auto& row : rows) {
    const char* const arguments[] = {"tool", "-n", row.text};
    const VelClConsoleUI ui(3, arguments);
    short asShort = 77;
    int asInt = 77;
    long asLong = 77;
    EXPECT_TRUE(ui.hasArgNumval("n", asShort) && ui.hasArgNumval('n', asInt) &&
                ui.hasArgNumval("-n", asLong));
    EXPECT_EQ(asShort, row.asShort) << row.text;
    EXPECT_EQ(asInt, row.asInt) << row.text;
    EXPECT_EQ(asLong, row.asInt) << row.text;
    ui.reqArgNumval('n', asShort);
    EXPECT_FALSE(ui.hasArgNumval("m", asShort));
    EXPECT_EQ(asShort, row.asShort) << row.text;
  }
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
  vel::test::Variables variables = {{"UI_DIRECTORY", directory.path()},
                                    {"LD_LIBRARY_PATH", directory.path()}};
  variables.emplace_back("UI_ACTION", "source");
  EXPECT_EQ(vel::test::runChild(program, {}, {.environment = variables}).output, "table\n");
  variables.back() = {"UI_USAGE", "<a>"};
  const auto refused = vel::test::runChild(program, {"-x"}, {.environment = variables});
  EXPECT_EQ(refused.exitCode, 201);
  EXPECT_EQ(refused.output, "\nUsage: UI_CHILD [-h|-H|-?|-copyright] [-quiet]\n                <a>\n\a");
  EXPECT_THAT(refused.errors, testing::HasSubstr("UI_CHILD: An error occurred:\n"));
}

}  // namespace
