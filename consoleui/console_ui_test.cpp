// Runs tools and compares their output and exit codes with session files.
#include "platform/test/test.h"
#include "vel_include/vel_consoleui.h"

namespace {

TEST(ConsoleUI, FollowsTheSession) {
  vel::test::expectSession(VEL_TEST_DATA "test/console_ui.session");
}

TEST(Conventions, FollowTheSession) {
  vel::test::expectSession(VEL_TEST_DATA "test/conventions.session");
}

/// Returns the arguments of a user interface, each with "s" if it is a switch and "f" if not.
std::string argumentsOf(const VelClConsoleUI& ui) {
  std::string text;
  VelClArgvCursor argument(ui);
  for (bool more = argument.setToFirst(); more; more = argument.setToNext())
    text += std::string(argument.isSwitch() ? "s" : "f") + argument.getAsCString() + ' ';
  return text;
}

TEST(Conventions, HoldForOneUserInterface) {
  const std::array<const char*, 6> arguments = {"tool", "--a=-b", "-color", "never", "--", "-c"};
  const auto make = [&] { return std::make_unique<VelClConsoleUI>(6, arguments.data()); };
  auto first = make(), second = make();
  const auto plain = make();
  first->useConventions();
  second->useConventions();
  // What a program has that was built with a header without the later choices.
  VelStConventions early{.colors = false};
  early.structSize = offsetof(VelStConventions, colors);
  const auto third = make();
  third->useConventions(early);
  const std::string rewritten = "s-a f-b f-c ";
  for (const auto* ui : {first.get(), second.get(), third.get()}) EXPECT_EQ(argumentsOf(*ui), rewritten);
  // The marks go with their owner, wherever it is in the list.
  second.reset();
  EXPECT_EQ(argumentsOf(*first), rewritten);
  first.reset();
  EXPECT_EQ(argumentsOf(*third), rewritten);
  EXPECT_EQ(argumentsOf(*plain), "s--a=-b s-color fnever s-- s-c ");
  EXPECT_EQ(third->getArgv()[2], arguments[1] + 4) << "values are not copied";
  const char* const* const before = third->getArgv();
  third->useConventions();
  EXPECT_EQ(argumentsOf(*third), rewritten);
  EXPECT_STREQ(before[1], "-a") << "a vector lives as long as its user interface";
}

// Programs collect their output in a text, also before they make a user interface.
TEST(Conventions, ColourNoCollectedText) {
  const std::array<const char*, 3> arguments = {"tool", "-color", "always"};
  VelClConsoleUI ui(3, arguments.data());
  const std::ostringstream collected;
  std::streambuf* const own = std::cout.rdbuf(collected.rdbuf());
  ui.useConventions();
  EXPECT_STREQ(ui.style(std::cout, VelEnTextStyle::GOOD), "");
  std::cout.rdbuf(own);
  EXPECT_STRNE(ui.style(std::cerr, VelEnTextStyle::GOOD), "");
}

// Standard input is redirected. platform/posix/console_test.cpp tests prompts on a terminal.
TEST(Prompts, FollowTheSession) {
  vel::test::expectSession(VEL_TEST_DATA "test/prompts.session");
}

/// Copies ui_child and its libraries, but no catalog (those end in ".DLL"), and returns the path of the copy.
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

TEST(ConsoleUI, UsesTheBuiltInTableWithoutTheLibrarysCatalog) {
  const vel::test::ScratchDirectory directory;
  const std::string program = copyToolTo(directory);
  // LD_LIBRARY_PATH is for POSIX; Windows searches the directory of the program anyway.
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
