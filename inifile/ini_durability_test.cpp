// A program that is killed during a save leaves the old file or the new one.
#include "inifile/test/ini_fixture.h"
#include "inifile/test/ini_saver.h"
#include "vel_include/vel_process.h"

namespace {

namespace fs = std::filesystem;

/// Removes the file of a killed save, which has a name on some file systems.
void removeUnfinishedFiles(const std::string& directory) {
  for (const auto& entry : fs::directory_iterator(directory))
    if (entry.path().extension() == ".tmp") fs::remove(entry);
}

/// Kills ini_saver, which saves nearly all of the time, as soon as it has saved once.
void saveAndEnd(const vel::test::ScratchDirectory& directory, const std::string& path) {
  removeUnfinishedFiles(directory.path());
  const fs::path saver = fs::path(vel::test::ownProgram()).replace_filename("ini_saver");
  const fs::file_time_type before = fs::last_write_time(path);
  VelClNewAsyncProcess process(VelClExeFile(saver.string().c_str()));
  process.addArgument(path.c_str());
  ASSERT_TRUE(process.launch());
  const auto id = static_cast<unsigned int>(process.getResult());
  std::error_code ignored;
  EXPECT_TRUE(vel::test::waitUntil([&] { return fs::last_write_time(path, ignored) > before; }));
  EXPECT_TRUE(VelClProcess(id).kill());
  EXPECT_TRUE(vel::test::endsWithin(id, vel::test::kTimeLimitMs));
}

/// Expects all options, with the values of one save.
void expectWhole(const std::string& path) {
  VelClIniFile file(path.c_str());
  ASSERT_TRUE(file.load(false));
  const std::string text = vel::test::shown(file), start = "[A]o0=";
  ASSERT_GT(text.size(), start.size());
  std::string expected = "[A]";
  for (int i = 0; i < vel::test::kSavedOptions; ++i)
    expected +=
        "o" + std::to_string(i) + "=" + std::string(vel::test::kSavedLength, text[start.size()]) + "|";
  EXPECT_EQ(text, expected);
}

TEST(IniDurability, KilledProgramLeavesAWholeFile) {
  const vel::test::ScratchDirectory directory;
  const std::string path = directory.path("a.ini");
  EXPECT_EQ(vel::test::runChild("ini_saver", {path, "once"}).exitCode, 0);
  for (int round = 0; round < 10; ++round) {
    saveAndEnd(directory, path);
    expectWhole(path);
  }
}

}  // namespace
