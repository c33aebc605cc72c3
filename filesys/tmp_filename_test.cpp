// Names of temporary files and backup copies, and temporary files made by many processes at once.
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
TEST_F(TmpFilenameTest, GivesUpWithoutRoomForTheRandomCharactersAndCreatesNothing) {
  std::string full = location().getAsCString();
  while (full.size() < kLimit) full += full.size() + 2 <= kLimit ? ".\\" : "\\";
  EXPECT_EQ(full.substr(0, kLimit), VelClTmpFilename(full.c_str(), "TMP").getAsCString());
  for (const std::string& path : {full, scratch_.path("missing"), std::string(1000, 'x')}) {
    char buffer[kLimit + 1] = "old";
    EXPECT_EQ(-1, velTmpFileCreate(path.c_str(), "LONGPREFIX", buffer));
    EXPECT_STREQ("", buffer);
    EXPECT_EQ(-1, velTmpFileCreate(scratch_.path().c_str(), "../x", buffer));
  }
}

TEST_F(TmpFilenameTest, FilesOfManyProcessesAreDistinct) {
  std::string outputs[6];
  std::vector<std::thread> threads;
  threads.reserve(std::size(outputs));
  for (std::string& output : outputs)
    threads.emplace_back([&output, this] {
      const auto child = vel::test::runChild("file_child", {},
                                             {.environment = {{"TMP", scratch_.path()}}, .rawOutput = true});
      EXPECT_EQ(0, child.exitCode);
      output = child.output;
    });
  for (std::thread& thread : threads) thread.join();
  std::set<std::string> names;
  for (const std::string& output : outputs) {
    std::istringstream lines(output);
    for (std::string line; std::getline(lines, line);) names.insert(line);
  }
  EXPECT_EQ(240U, names.size());
  for (const std::string& name : names) EXPECT_TRUE(VelClFilename(name.c_str()).isExistent()) << name;
  EXPECT_EQ(240, std::distance(fs::directory_iterator(scratch_.path()), {}));
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
