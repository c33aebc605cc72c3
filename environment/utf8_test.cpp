// Tests names, variables and arguments in UTF-8. On Windows the process runs with ANSI code page 1252, which
// lacks most of the characters here; Linux takes the names as bytes.
#include "vel_include/vel_utf8.h"

#include "platform/test/test.h"
#include "vel_include/vel_codepage.h"
#include "vel_include/vel_environment.h"
#include "vel_include/vel_filesys.h"
#include "vel_include/vel_inifile.h"
#include "vel_include/vel_process.h"

namespace {

constexpr const char* kTexts[] = {"Jürgen", "пример", "日本", "😀", "mit Leerzeichen ä", "e\u0301", "ＪＡ"};
constexpr char kSeparator = static_cast<char>(std::filesystem::path::preferred_separator);
constexpr bool kIsWindows = kSeparator == '\\';

using vel::test::readFile;
using vel::test::utf8Path;

class Utf8 : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    velUseUtf8();
    ASSERT_TRUE(velIsUtf8Used());
  }

  std::string path(const std::string& name) const { return scratch_.path(name); }

  const vel::test::ScratchDirectory scratch_;
};

TEST_F(Utf8, IsTheCodePageOfTheProcess) {
  EXPECT_EQ(VelClCCSID::getSystemCCSID(), 1208);
  EXPECT_EQ(VelClCCSID::getConsoleCCSID(), 1208);
}

TEST_F(Utf8, NamesReachTheFileSystem) {
  for (const std::string text : kTexts) {
    SCOPED_TRACE(text);
    const VelClDirectory start(path(text).c_str());
    VelClDirectory directory(start);
    ASSERT_TRUE(directory.create());
    EXPECT_TRUE(std::filesystem::is_directory(utf8Path(path(text))));
    const std::string name = path(text + kSeparator + text + ".ini"),
                      copied = path(text + kSeparator + "copy " + text);
    std::ofstream(utf8Path(name), std::ios::binary) << "[a]\nb=1\n";
    VelClIniFileEditor editor(name.c_str()), other(name.c_str());
    EXPECT_EQ(editor.lock(0), VelEnIniFileLock::LOCKED);
    EXPECT_EQ(other.lock(0), VelEnIniFileLock::TIMED_OUT);
    ASSERT_TRUE(editor.load(false));
    EXPECT_TRUE(editor.setValue("a", "b", text.c_str()));
    EXPECT_TRUE(editor.save());
    EXPECT_EQ(readFile(name), "[a]\nb=" + text + "\n");
    VelClFile file(name.c_str(), "");
    EXPECT_TRUE(file.isFile());
    EXPECT_EQ(file.getFileSize(), readFile(name).size());
    EXPECT_TRUE(file.copyTo(copied.c_str(), true));
    EXPECT_EQ(readFile(copied), readFile(name));
    EXPECT_TRUE(file.renameAs(path(text + kSeparator + text + text).c_str()));
    std::set<std::string> listed;
    for (VelClDirectoryWalk walk(directory); walk.isValid(); walk.setToNext())
      if (walk.isFile()) listed.insert(walk.getNameWithoutPath());
    EXPECT_EQ(listed, (std::set<std::string>{"copy " + text, text + text}));
    EXPECT_TRUE(VelClFile(copied.c_str(), "").remove());
    EXPECT_TRUE(directory.removeAll(true));
    EXPECT_FALSE(std::filesystem::exists(utf8Path(path(text))));
  }
}

TEST_F(Utf8, NamesOfTheCurrentDirectoryComeBack) {
  const vel::test::CurrentDirectory before(scratch_.path());
  VelClDirectory directory(path("日本 😀").c_str());
  ASSERT_TRUE(directory.create());
  ASSERT_TRUE(directory.setAsCurrent());
  std::array<char, VEL_MAX_PATH_LENGTH + 1> name{"пример"};
  ASSERT_TRUE(VelClDirectory::expandRelativeDirectory(name.data()));
  EXPECT_THAT(name.data(), testing::EndsWith("日本 😀\\"));
}

TEST_F(Utf8, TheDirectoryOfTemporaryFilesIsFound) {
  const std::string directory = path("временный");
  ASSERT_TRUE(VelClDirectory(directory.c_str()).create());
  const vel::test::Variable restored("TMP", "unused");
  const VelClEnvironmentVariable variable("TMP", directory.c_str());
  EXPECT_EQ(velGetTmpDirectory(), directory);
  std::array<char, VEL_MAX_PATH_LENGTH + 1> name;
  const int descriptor = velTmpFileCreate(nullptr, "é", name.data());
  ASSERT_GE(descriptor, 0);
  vel::test::closeDescriptor(descriptor);
  EXPECT_TRUE(std::filesystem::exists(utf8Path(name.data())));
  EXPECT_THAT(name.data(), testing::StartsWith(directory));
}

TEST_F(Utf8, VariablesKeepAllCharacters) {
  VelClEnvironmentVariable variable("VEL_TEST_ПЕРЕМЕННАЯ", "");
  for (const char* const text : kTexts) {
    ASSERT_TRUE(variable.setNewValue(text));
    const char* const value = variable.getValue();
    EXPECT_STREQ(value, text);
    EXPECT_EQ(variable.getValue(), value) << "the text lives until the value changes";
    EXPECT_TRUE(variable.appendValue("+"));
    EXPECT_EQ(variable.getValue(), std::string(text) + "+");
  }
  variable.resetValue();
  EXPECT_FALSE(variable.hasValue());
}

TEST_F(Utf8, IllFormedNamesAreRefusedOnlyOnWindows) {
  for (const std::string bytes : {"a\xFF", "\xC3", "\xED\xA0\x80x"}) {
    const std::string name = path(bytes);
    EXPECT_EQ(VelClDirectory(name.c_str()).create(), !kIsWindows);
    EXPECT_EQ(VelClDirectory(name.c_str()).isExistent(), !kIsWindows);
    VelClEnvironmentVariable variable("VEL_TEST_VARIABLE", bytes.c_str());
    EXPECT_EQ(variable.hasValue(), !kIsWindows);
    variable.resetValue();
  }
}

/// Starts a child, which writes to a file of this name, and returns what it wrote.
std::string reportOf(const char* child, const char* task, const std::string& report, bool passesTexts) {
  const std::filesystem::path program =
      std::filesystem::path(vel::test::ownProgram()).replace_filename(child);
  VelClNewSyncProcess process{VelClExeFile(VelClFilename(program.string().c_str()))};
  process.addArgument(task);
  process.addArgument(report.c_str());
  for (const char* const text : kTexts)
    if (passesTexts) process.addArgument(text);
  EXPECT_TRUE(process.launch());
  EXPECT_EQ(process.getResult(), 0);
  return readFile(report);
}

TEST_F(Utf8, ChildrenReceiveArgumentsAndVariables) {
  VelClEnvironmentVariable variable("VEL_TEST_VARIABLE", "Jürgen 日本"), named("VEL_TEST_ПЕРЕМЕННАЯ", "😀");
  std::string expected;
  for (const char* const text : kTexts) expected.append(text).append("\n");
  expected += "Jürgen 日本\n😀\n1\n";
  for (const char* const task : {"vector", "ui"})
    EXPECT_EQ(reportOf("utf8_child", task, path(std::string("отчёт ") + task), true), expected) << task;
  // The manifest does the same without a call.
  EXPECT_EQ(reportOf("utf8_manifest_child", "plain", path("отчёт"), true), expected);
  variable.resetValue();
  named.resetValue();
}

TEST_F(Utf8, OtherProgramsAreNotAffected) {
  VelClEnvironmentVariable variable("VEL_TEST_VARIABLE", "J\u00FC\u0101");
  EXPECT_EQ(reportOf("utf8_child", "plain", path("report"), false),
            kIsWindows ? "J\xFC?\nnone\n0\n" : "Jüā\nnone\n1\n");
  variable.resetValue();
}

}  // namespace
