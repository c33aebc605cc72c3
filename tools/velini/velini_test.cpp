// Runs velini as scripts do, and several at once.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "platform/test/child_process.h"
#include "platform/test/scratch_directory.h"
#include "platform/test/session.h"
#include "vel_include/vel_inifile.h"

namespace {

using vel::test::ChildResult;
using vel::test::runChild;

TEST(Velini, FollowsTheSession) {
  vel::test::expectSession(VEL_TEST_DATA "velini/test/velini.session", true);
}

/// One option for each, set by programs that run at the same time.
std::vector<ChildResult> setAtOnce(const std::string& file, int count) {
  std::vector<ChildResult> results(static_cast<std::size_t>(count));
  std::vector<std::thread> threads;
  for (int i = 0; i < count; ++i)
    threads.emplace_back([&file, &result = results[static_cast<std::size_t>(i)], i] {
      // The test waits no longer than this.
      const std::string wait = std::to_string(vel::test::kTimeLimitMs / 1000);
      result = runChild(
          "velini", {"-file", file, "-section", "A", "-set", "o" + std::to_string(i) + "=1", "-wait", wait});
    });
  for (std::thread& thread : threads) thread.join();
  return results;
}

TEST(Velini, LosesNoChangeOfManyAtOnce) {
  constexpr int kPrograms = 20;
  const vel::test::ScratchDirectory directory;
  // The first of them makes one of the files.
  for (const std::string& file : {directory.path("new.ini"), directory.write("old.ini", "[A]\nkept=1\n")}) {
    for (const ChildResult& result : setAtOnce(file, kPrograms))
      EXPECT_EQ(result.exitCode, 0) << result.errors;
    VelClIniFile read(file.c_str());
    EXPECT_TRUE(read.load(false) && read.getSection("A"));
    for (int i = 0; i < kPrograms; ++i) {
      const char* value = nullptr;
      EXPECT_TRUE(read.getOption(("o" + std::to_string(i)).c_str(), value)) << i;
    }
  }
  const std::filesystem::directory_iterator entries(directory.path());
  EXPECT_EQ(std::distance(entries, {}), 2) << "something is left behind";
}

TEST(Velini, SaysThatTheFileIsLocked) {
  const vel::test::ScratchDirectory directory;
  const std::string file = directory.write("a.ini", "[A]\nx=1\n");
  VelClIniFileEditor editor(file.c_str());
  ASSERT_EQ(editor.lock(0), VelEnIniFileLock::LOCKED);
  const ChildResult result =
      runChild("velini", {"-file", file, "-section", "A", "-set", "x=2", "-wait", "0"});
  EXPECT_EQ(result.exitCode, 5);
  EXPECT_THAT(result.errors, testing::HasSubstr("locked"));
  // Reading takes no lock.
  EXPECT_EQ(runChild("velini", {"-file", file, "-section", "A", "-get", "x"}).output, "1\n");
}

}  // namespace
