// A program that is ended while it saves leaves the file of before or the new one.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>

#include "inifile/test/ini_saver.h"
#include "platform/test/child_process.h"
#include "platform/test/scratch_directory.h"
#include "vel_include/vel_inifile.h"
#include "vel_include/vel_process.h"

namespace {

namespace fs = std::filesystem;

/// What is left of a save that was ended on a file system where unfinished files have names.
void removeUnfinishedFiles(const std::string& directory) {
  for (const auto& entry : fs::directory_iterator(directory))
    if (entry.path().extension() == ".tmp") fs::remove(entry);
}

/// Ends ini_saver, which saves nearly all of the time, as soon as it has saved.
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

/// All options are there, and all have the value of one save.
void expectWhole(const std::string& path) {
  VelClIniFile file(path.c_str());
  ASSERT_TRUE(file.load(false));
  VelClIniFileOptionCursor option(file, "A");
  ASSERT_TRUE(option.setToFirst());
  const std::string value = option.getValue();
  int count = 0;
  for (; option.isValid(); option.setToNext(), ++count) EXPECT_EQ(option.getValue(), value);
  EXPECT_EQ(value, std::string(vel::test::kSavedLength, value[0]));
  EXPECT_EQ(count, vel::test::kSavedOptions);
}

TEST(IniDurability, EndedProgramsLeaveAWholeFile) {
  const vel::test::ScratchDirectory directory;
  const std::string path = directory.path("a.ini");
  EXPECT_EQ(vel::test::runChild("ini_saver", {path, "once"}).exitCode, 0);
  for (int round = 0; round < 10; ++round) {
    saveAndEnd(directory, path);
    expectWhole(path);
  }
}

}  // namespace
