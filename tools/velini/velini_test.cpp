// Runs velini as scripts do, also several at a time.
#include <future>

#include "platform/test/test.h"
#include "vel_include/vel_inifile.h"

namespace {

using vel::test::ChildResult;
using vel::test::runChild;

TEST(Velini, FollowsTheSession) {
  vel::test::expectSession(VEL_TEST_DATA "velini/test/velini.session", true);
}

TEST(Velini, LosesNoChangeOfConcurrentPrograms) {
  const std::string wait = std::to_string(vel::test::kTimeLimitMs / 1000);
  const vel::test::ScratchDirectory directory;
  // The first of the programs creates one of the files.
  for (const std::string& file : {directory.path("new.ini"), directory.write("old.ini", "[A]\nkept=1\n")}) {
    constexpr int kPrograms = 20;
    std::vector<std::future<ChildResult>> programs;
    programs.reserve(kPrograms);
    for (int i = 0; i < kPrograms; ++i)
      programs.push_back(std::async(std::launch::async, [&, i] {
        const std::string change = "o" + std::to_string(i) + "=1";
        const std::string dialect = i % 2 == 0 ? "ini" : "python";
        return runChild("velini",
                        {"-file", file, "-section", "A", "-set", change, "-wait", wait, "-dialect", dialect});
      }));
    for (auto& program : programs) EXPECT_EQ(program.get().exitCode, 0);
    VelClIniFile read(file.c_str());
    EXPECT_TRUE(read.load(false));
    EXPECT_TRUE(read.getSection("A"));
    for (int i = 0; i < 20; ++i) {
      const char* value = nullptr;
      EXPECT_TRUE(read.getOption(("o" + std::to_string(i)).c_str(), value)) << i;
    }
  }
  const std::filesystem::directory_iterator entries(directory.path());
  EXPECT_EQ(std::distance(entries, {}), 2) << "an unfinished file is left";
}

TEST(Velini, ReportsALockedFile) {
  const vel::test::ScratchDirectory directory;
  const std::string file = directory.write("a.ini", "[A]\nx=1\n");
  VelClIniFileEditor editor(file.c_str());
  ASSERT_EQ(editor.lock(0), VelEnIniFileLock::LOCKED);
  const ChildResult result =
      runChild("velini", {"-file", file, "-section", "A", "-set", "x=2", "-wait", "0"});
  EXPECT_EQ(result.exitCode, 5);
  EXPECT_THAT(result.errors, testing::HasSubstr("locked"));
  // Reading needs no lock.
  EXPECT_EQ(runChild("velini", {"-file", file, "-section", "A", "-get", "x"}).output, "1\n");
}

}  // namespace
