// Runs tools and compares their output and exit codes with session files.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "platform/test/child_process.h"
#include "platform/test/scratch_directory.h"
#include "platform/test/session.h"

namespace {

TEST(ConsoleUI, FollowsTheSession) {
  vel::test::expectSession(VEL_TEST_DATA "test/console_ui.session");
}

TEST(Conventions, FollowTheSession) {
  vel::test::expectSession(VEL_TEST_DATA "test/conventions.session");
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
