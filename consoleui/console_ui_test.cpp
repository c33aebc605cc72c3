// A tool's dialogue with its user, seen from outside: ui_child runs, and its bytes and exit code are
// compared.
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

// Whole dialogues with redirected input: prompt_child asks. A terminal is platform/posix/console_test.cpp's
// matter.
TEST(Prompts, FollowTheSession) {
  vel::test::expectSession(VEL_TEST_DATA "test/prompts.session");
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
