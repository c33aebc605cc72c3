// Names of temporary files and backup copies, and temporary files made by many processes at once.
#include <cstdio>
#include <iterator>
#include <set>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "filesys/test/directory_fixture.h"
#include "platform/test/child_process.h"
#include "vel_include/vel_process.h"

namespace {

namespace fs = std::filesystem;

constexpr size_t kLimit = VEL_MAX_PATH_LENGTH;
const std::string kAlphabet = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ@#!%_";

std::string digitsOfProcess() {
  std::string digits = std::to_string(VelClProcessProperty().getProcessId() % 1000);
  digits.insert(0, 3 - digits.size(), '0');
  return {digits.rbegin(), digits.rend()};
}

class TmpFilenameTest : public vel::test::DirectoryFixture {
 protected:
  VelClLocation location() const { return directory("").getName(); }
};

TEST_F(TmpFilenameTest, HasPrefixRandomCharactersAndReversedDigits) {
  const struct {
    const char *prefix, *kept;
  } rows[] = {{"TMP", "TMP"}, {"LONGPREFIX", "LONGP"}, {"", ""}, {"a", "a"}, {nullptr, ""}};
  for (const auto& row : rows) {
    const VelClTmpFilename name(location(), row.prefix);
    const std::string text = name.getName();
    ASSERT_EQ(12U, text.size());
    EXPECT_EQ(row.kept, text.substr(0, std::string(row.kept).size()));
    EXPECT_EQ(8U, text.find_first_not_of(kAlphabet, std::string(row.kept).size())) << text;
    EXPECT_EQ("." + digitsOfProcess(), text.substr(8));
    EXPECT_EQ("." + digitsOfProcess(), name.getExtension());
    EXPECT_EQ(location().getAsCString() + text, name.getAsCString());
    EXPECT_FALSE(name.isExistent());
    EXPECT_TRUE(VelClTmpFilename(VelClLocation("C:\\dir", false), row.prefix).isStyleFAT_8_3());
  }
}

TEST_F(TmpFilenameTest, LiesInTheDirectoryAskedFor) {
  const VelClLocation here = location();
  const VelClFilename model(here, "old.name.txt", nullptr);
  for (const VelClTmpFilename& name :
       {VelClTmpFilename(here.getAsCString(), "x"), VelClTmpFilename(model, "x"), VelClTmpFilename(here)}) {
    EXPECT_STREQ(here.getAsCString(), VelClLocation(name, false).getAsCString());
    EXPECT_EQ(12U, std::string(name.getName()).size());
  }
  VelClEnvironmentVariable tmp("TMP", here.getAsCString());
  EXPECT_TRUE(
      std::string(VelClTmpFilename().getAsCString()).starts_with(here.getAsCString() + std::string("TMP")));
  VelClFilename assigned;
  assigned = VelClTmpFilename("abc");
  EXPECT_TRUE(std::string(assigned.getAsCString()).starts_with(here.getAsCString() + std::string("abc")));
  EXPECT_EQ(std::string(".") + digitsOfProcess(), assigned.getExtension());
  tmp.resetValue();
}

TEST_F(TmpFilenameTest, AvoidsNamesThatAreTaken) {
  std::set<std::string> names;
  for (int i = 0; i < 200; ++i) {
    const VelClTmpFilename name(location(), "FIVES");
    EXPECT_FALSE(name.isExistent());
    EXPECT_TRUE(names.insert(name.getName()).second);
    scratch_.write(name.getName(), "");
  }
}

// Of a directory with the full length nothing but the directory itself is left.
TEST_F(TmpFilenameTest, GivesUpWithoutRoomForTheRandomCharacters) {
  std::string full = location().getAsCString();
  while (full.size() < kLimit) full += full.size() + 2 <= kLimit ? ".\\" : "\\";
  const VelClTmpFilename name(full.c_str(), "TMP");
  EXPECT_EQ(full.substr(0, kLimit), name.getAsCString());
  char buffer[kLimit + 1] = "old";
  EXPECT_EQ(-1, velTmpFileCreate(full.c_str(), "TMP", buffer));
  EXPECT_STREQ("", buffer);
}

TEST_F(TmpFilenameTest, FileIsCreatedOnlyInADirectoryThatExists) {
  char buffer[kLimit + 1] = "old";
  EXPECT_EQ(-1, velTmpFileCreate(scratch_.path("missing").c_str(), nullptr, buffer));
  EXPECT_STREQ("", buffer);
  EXPECT_EQ(-1, velTmpFileCreate(std::string(1000, 'x').c_str(), std::string(1000, 'y').c_str(), buffer));
  EXPECT_STREQ("", buffer);
}

constexpr int kFilesOfAChild = 40;

// Run in a child, whose directory for temporary files is the test's.
TEST(TmpFile, DISABLED_CreatesFiles) {
  for (int i = 0; i < kFilesOfAChild; ++i) {
    char name[kLimit + 1];
    const int descriptor = velTmpFileCreate(nullptr, "FIVES", name);
    ASSERT_GE(descriptor, 0);
    EXPECT_TRUE(velFileIsOpenedInBinaryMode(descriptor));
    std::printf("created %s\n", name);
  }
}

std::vector<std::string> namesCreatedByAChild(const std::string& directory) {
  vel::test::ChildOptions options;
  options.environment = {{"TMP", directory}};
  const auto child =
      vel::test::runChild(vel::test::ownProgram(),
                          {"--gtest_also_run_disabled_tests", "--gtest_filter=TmpFile.DISABLED_*"}, options);
  EXPECT_EQ(0, child.exitCode) << child.output;
  std::vector<std::string> names;
  std::istringstream lines(child.output);
  for (std::string line; std::getline(lines, line);)
    if (line.starts_with("created ")) names.push_back(line.substr(8));
  return names;
}

TEST_F(TmpFilenameTest, FilesOfManyProcessesAreDistinct) {
  constexpr int kChildren = 6;
  std::vector<std::vector<std::string>> lists(kChildren);
  std::vector<std::thread> threads;
  threads.reserve(lists.size());
  for (auto& list : lists)
    threads.emplace_back([&list, this] { list = namesCreatedByAChild(scratch_.path()); });
  for (std::thread& thread : threads) thread.join();
  std::set<std::string> names;
  for (const auto& list : lists) names.insert(list.begin(), list.end());
  EXPECT_EQ(static_cast<size_t>(kChildren * kFilesOfAChild), names.size());
  for (const std::string& name : names) EXPECT_TRUE(VelClFilename(name.c_str()).isExistent()) << name;
  EXPECT_EQ(kChildren * kFilesOfAChild, std::distance(fs::directory_iterator(scratch_.path()), {}));
}

// The extension still begins where it did, in copies as well.
TEST(BakFilename, StandsBehindTheWholeName) {
  const std::string full(kLimit, 'x');
  const struct {
    std::string name, backup, extension;
  } rows[] = {{"report.txt", "report.txt.BAK", ".txt.BAK"},
              {"C:\\d.e\\a", "C:\\d.e\\a.BAK", ".BAK"},
              {"", ".BAK", ".BAK"},
              {full.substr(2), full.substr(2) + ".B", ".B"},
              {full, full, ""}};
  for (const auto& row : rows) {
    const VelClBakFilename backup(VelClFilename(row.name.c_str()));
    VelClFilename copy;
    copy = backup;
    EXPECT_EQ(row.backup, backup.getAsCString());
    EXPECT_EQ(row.extension, backup.getExtension());
    EXPECT_EQ(row.backup.size(), backup.getLength());
    EXPECT_EQ(row.extension, copy.getExtension());
  }
}

}  // namespace
