// Tests the names of temporary files and backup copies, and the creation of temporary files.
#include <unistd.h>

#include "filesys/test/directory_fixture.h"
#include "vel_include/vel_process.h"

namespace {

const std::string kAlphabet = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ@#!%_";

std::string digitsOfProcess() {
  std::string digits = std::to_string(VelClProcessProperty().getProcessId() % 1000);
  digits.insert(0, 3 - digits.size(), '0');
  return {digits.rbegin(), digits.rend()};
}

class TmpFilenameTest : public vel::test::DirectoryFixture {
 protected:
  const VelClLocation here_ = directory("").getName();
};

TEST_F(TmpFilenameTest, HasPrefixRandomCharactersAndReversedDigits) {
  const char* const rows[][2] = {
      {"TMP", "TMP"}, {"longprefix", "longp"}, {"", ""}, {"a", "a"}, {nullptr, ""}};
  for (const auto& [given, prefix] : rows) {
    const VelClTmpFilename name(here_, given);
    const std::string text = name.getName();
    EXPECT_TRUE(text.starts_with(prefix)) << text;
    EXPECT_EQ(8U, text.find_first_not_of(kAlphabet, std::string(prefix).size())) << text;
    EXPECT_EQ("." + digitsOfProcess(), text.substr(8));
    EXPECT_EQ("." + digitsOfProcess(), name.getExtension());
    EXPECT_EQ(here_.getAsCString() + text, name.getAsCString());
    EXPECT_TRUE(VelClTmpFilename(VelClLocation("C:\\dir", false), given).isStyleFAT_8_3());
  }
}

TEST_F(TmpFilenameTest, IsAFreeNameInTheGivenDirectory) {
  for (int i = 0; i < 200; ++i) {
    const VelClTmpFilename name(here_, "FIVES");
    ASSERT_FALSE(name.isExistent());
    scratch_.write(name.getName(), "");
  }
  const std::string here = here_.getAsCString();
  const vel::test::Variable tmp("TMP", here.c_str());
  const VelClFilename model(here_, "old.name.txt", nullptr);
  const std::pair<VelClTmpFilename, const char*> rows[] = {{VelClTmpFilename(here.c_str(), "x"), "x"},
                                                           {VelClTmpFilename(model, "x"), "x"},
                                                           {VelClTmpFilename(here_), "TMP"},
                                                           {VelClTmpFilename(), "TMP"},
                                                           {VelClTmpFilename("abc"), "abc"}};
  for (const auto& [name, prefix] : rows) {
    VelClFilename assigned;
    assigned = name;
    EXPECT_TRUE(std::string(assigned.getAsCString()).starts_with(here + prefix)) << assigned.getAsCString();
    EXPECT_EQ(here.size() + 12, assigned.getLength());
    EXPECT_EQ("." + digitsOfProcess(), assigned.getExtension());
  }
}

// A directory of the full length leaves no room for a name, and a name that was cut may belong to another
// file.
TEST_F(TmpFilenameTest, CreatesNothingWithoutRoomForTheRandomCharacters) {
  std::string full = here_.getAsCString();
  while (full.size() < VEL_MAX_PATH_LENGTH) full += full.size() + 2 <= VEL_MAX_PATH_LENGTH ? ".\\" : "\\";
  EXPECT_EQ(full.substr(0, VEL_MAX_PATH_LENGTH), VelClTmpFilename(full.c_str(), "TMP").getAsCString());
  for (const std::string& path :
       {full.substr(0, VEL_MAX_PATH_LENGTH - 5), full, scratch_.path("missing"), std::string(1000, 'x')}) {
    char buffer[VEL_MAX_PATH_LENGTH + 1] = "old";
    EXPECT_EQ(-1, velTmpFileCreate(path.c_str(), nullptr, buffer));
    EXPECT_STREQ("", buffer);
    EXPECT_EQ(-1, velTmpFileCreate(scratch_.path().c_str(), "../x", buffer));
  }
  EXPECT_TRUE(std::filesystem::is_empty(scratch_.path()));
}

TEST_F(TmpFilenameTest, FilesAreNewAndBinary) {
  const vel::test::Variable tmp("TMP", scratch_.path().c_str());
  std::set<std::string> names;
  while (names.size() < 40) {
    char name[VEL_MAX_PATH_LENGTH + 1];
    const int descriptor = velTmpFileCreate(nullptr, "FIVES", name);
    EXPECT_TRUE(velFileIsOpenedInBinaryMode(descriptor));
    for (const bool binary : {false, true}) EXPECT_TRUE(velFileSetBinaryMode(descriptor, binary));
    EXPECT_EQ(write(descriptor, "\n", 1), 1);
    vel::test::closeDescriptor(descriptor);
    EXPECT_EQ(vel::test::readFile(name), "\n");
    ASSERT_TRUE(names.insert(name).second) << name;
  }
}

// Intentional: the extension begins where that of the original does.
TEST(BakFilename, AppendsItsExtensionToTheWholeName) {
  const std::string full(VEL_MAX_PATH_LENGTH, 'x');
  const std::string rows[][3] = {{"report.txt", "report.txt.BAK", ".txt.BAK"},
                                 {"C:\\d.e\\a", "C:\\d.e\\a.BAK", ".BAK"},
                                 {"", ".BAK", ".BAK"},
                                 {full.substr(2), full.substr(2) + ".B", ".B"},
                                 {full, full, ""}};
  for (const auto& [name, result, extension] : rows) {
    const VelClBakFilename backup(VelClFilename(name.c_str()));
    VelClFilename copy;
    copy = backup;
    EXPECT_EQ(result, backup.getAsCString());
    EXPECT_EQ(extension, backup.getExtension());
    EXPECT_EQ(result.size(), backup.getLength());
    EXPECT_EQ(extension, copy.getExtension());
  }
}

}  // namespace
