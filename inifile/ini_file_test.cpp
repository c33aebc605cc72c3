// The parser, and getters by name. Arbitrary bytes are tested by fuzz/inifile_load_fuzz.cpp.
#include "inifile/test/ini_fixture.h"
#include "vel_include/vel.h"

using namespace std::string_literals;
using namespace vel::test;

namespace {

TEST(IniParser, ParsesTexts) {
  const vel::test::Variable set("VEL_TEST_INI", "a;b \"c "), unset("VEL_TEST_NONE", nullptr);
  const vel::test::Variable big("VEL_TEST_BIG", std::string(5000, 'b').c_str());
  // The classes for environment variables cannot hold a name of this length.
  const std::string longName(41, 'N');
  const vel::test::Variable named(longName.c_str(), "long");
  for (const auto& row : readTexts(VEL_TEST_DATA "test/models.tsv")) {
    VelClIniFile file("unused");
    EXPECT_TRUE(loadText(file, row[0], row[1] == "keep"));
    EXPECT_EQ(file.getLineCount(), std::stoul(row[2])) << row[0];
    EXPECT_EQ(shown(file), row.at(3)) << row[0];
  }
  VelClIniFile file("unused");
  EXPECT_TRUE(loadText(file, ""));
  EXPECT_EQ(file.getLineCount(), 1U);
  EXPECT_TRUE(file.loadFromBuffer("[A]|x=1|y=2\n ;c", 15, '|', true, true));
  EXPECT_EQ(shown(file), "[A]x=1|y=2;c|");
}

TEST(IniParser, ReadsFilesOfOtherPrograms) {
  for (const auto& row : readTexts(VEL_TEST_DATA "test/samples.tsv")) {
    VelClIniFile file((VEL_TEST_DATA "test/samples/" + row.at(0)).c_str());
    EXPECT_TRUE(file.load(true)) << row[0];
    file.getSection(row.at(1).c_str());
    const char* value = "(none)";
    file.getOption(row.at(2).c_str(), value);
    EXPECT_EQ(value, row.at(3)) << row[0] << ": " << row[2];
  }
}

/// Error identifiers and line numbers.
using Errors = std::vector<std::pair<std::uint32_t, unsigned int>>;

struct Report {
  Errors errors;
  std::size_t most = 100;
};

/// An error handler that records errors, and stops the parser at the last one it may record.
bool keep(const _VelStError& error, unsigned int line, void* data) {
  auto& report = *static_cast<Report*>(data);
  EXPECT_EQ(error.errorClass, VelEnErrorClass::USER_DATA_ERROR);
  report.errors.emplace_back(error.errorId, line);
  return report.errors.size() < report.most;
}

TEST(IniParser, ReportsErrorsToTheHandlerUntilItRefuses) {
  const std::string text = "junk\n[A]\nx=1\n[B\njunk\n y\n z\n[C]\n w\n";
  const Errors errors = {{INIFILE_INVAL_SECTION, 4},
                         {INIFILE_INVAL_OPTION, 5},
                         {INIFILE_INVAL_WHITESPACE, 6},
                         {INIFILE_INVAL_WHITESPACE, 7},
                         {INIFILE_INVAL_WHITESPACE, 9}};
  VelClIniFile file("unused");
  Report report;
  file.setErrorHandler(keep, &report);
  EXPECT_TRUE(loadText(file, text, true, false));
  EXPECT_EQ(report.errors, errors);
  EXPECT_EQ(file.getLineCount(), 10U);
  // A second load continues the line numbers and adds to the model.
  report = {{}, 2};
  EXPECT_FALSE(loadText(file, text, true, true));
  EXPECT_EQ(report.errors, (Errors{{INIFILE_INVAL_SECTION, 14}, {INIFILE_INVAL_OPTION, 15}}));
  EXPECT_EQ(shown(file), "[A]x=1|[C][A]x=1|");
  EXPECT_TRUE(file.getSection("c"));
  EXPECT_FALSE(file.getSection("b"));
  // The handler can stop a file at any error, and can delete the option that is being read.
  const vel::test::ScratchDirectory directory;
  VelClIniFile stopped(directory.write("a.INI", text).c_str()), shrinking("unused");
  stopped.setErrorHandler(keep, &report);
  report = {{}, 3};
  EXPECT_FALSE(stopped.load(false));
  EXPECT_EQ(report.errors.size(), 3U);
  const auto drop = [](const _VelStError&, unsigned int, void* data) {
    return static_cast<VelClIniFile*>(data)->deleteOption("x");
  };
  shrinking.setErrorHandler(drop, &shrinking);
  EXPECT_FALSE(loadText(shrinking, "[A]\nx=1\njunk\n y\n"));
  EXPECT_EQ(shown(shrinking), "[A]");
}

TEST(IniFile, LoadsAFileNamedWithOrWithoutExtension) {
  const vel::test::ScratchDirectory directory;
  const std::string longest(1023 - 2, 'v');
  const std::string path = directory.write("a.INI", "[A]\r\nx=1 ;c\r\n y\r\nl=" + longest + "\r\nz=\r3\r\n");
  VelClIniFile file(path.substr(0, path.size() - 4).c_str());
  EXPECT_TRUE(file.load(true));
  EXPECT_TRUE(file.load(false));
  EXPECT_EQ(file.getLineCount(), 6U);
  const std::string rest = "|l=" + longest + "|z=3|";
  EXPECT_EQ(shown(file), "[A]x=1y" + rest + "[A]x=1;c" + rest);
  // A file that cannot be opened resets the line count and changes nothing else.
  std::filesystem::create_directory(directory.path("d.ini"));
  for (const char* const entry : {"none.ini", "d.ini"}) {
    VelClIniFile missing(directory.path(entry).c_str());
    EXPECT_TRUE(loadText(missing, "[A]\n"));
    EXPECT_FALSE(missing.load(true));
    EXPECT_EQ(missing.getLineCount(), 0U);
    EXPECT_EQ(shown(missing), "[A]");
  }
}

/// Expects every getter of this type to give the answer, unless that is "-".
template <typename Answer>
void expectAnswer(const VelClIniFile& file, const std::string& expected) {
  if (expected == "-") return;
  Answer answer{0}, again{1};
  const char* comment = nullptr;
  EXPECT_TRUE(file.getOption("x", again, comment));
  EXPECT_STREQ(comment, "c");
  if constexpr (std::is_same_v<Answer, bool>) {
    EXPECT_TRUE(file.getOptionBool("X", answer));
  } else {
    EXPECT_TRUE(file.getOption("X", answer));
    VelClIniFileOptionCursor cursor(file, *file.getExistingSection("a"));
    EXPECT_FALSE(cursor.getValue(again));
    EXPECT_TRUE(cursor.setToFirst());
    Answer fromCursor{2};
    EXPECT_TRUE(cursor.getValue(fromCursor));
    EXPECT_EQ(fromCursor, again);
  }
  EXPECT_EQ(answer, again);
  constexpr bool isCharacter = std::is_same_v<Answer, char>;
  EXPECT_EQ(isCharacter ? std::string(1, static_cast<char>(answer)) : std::to_string(answer), expected);
}

// Intentional: a value is true if it occurs within one of the words for true.
TEST(IniFile, ConvertsValuesToTheTypeOfTheGetter) {
  for (const auto& row : readTexts(VEL_TEST_DATA "test/answers.tsv")) {
    SCOPED_TRACE(row[0]);
    VelClIniFile file("unused");
    loadText(file, "[A]\nx="s + row[0] + " ;c");
    ASSERT_TRUE(file.getSection("a"));
    expectAnswer<int>(file, row[1]);
    expectAnswer<long>(file, row[1]);
    expectAnswer<unsigned int>(file, row[2]);
    expectAnswer<unsigned long>(file, row[2]);
    expectAnswer<bool>(file, row[3]);
    expectAnswer<char>(file, row.at(4));
  }
  for (const auto& row : readTexts(VEL_TEST_DATA "test/escapes.tsv")) {
    const char* at = row[1].c_str();
    const char character =
        row[0] == "quote" ? velIniFileGetQuotedCharacter(at) : velIniFileGetEscCharacter(at);
    EXPECT_EQ(std::string(1, character), row[2]) << row[1];
    EXPECT_EQ(at, row[1].c_str() + std::stoul(row.at(3))) << row[1];
  }
}

TEST(IniFile, GettersReadOnlyTheCurrentSection) {
  VelClIniFile file("unused");
  const char *value = "untouched", *comment = value;
  loadText(file, "[A]\nx=1;c\nX=2\n[a]\ny=3\n");
  VelClIniFileOptionCursor cursor(file, *file.getExistingSection("a"));
  EXPECT_THAT((std::array{cursor.getValue(value), file.getOption("x", value, comment), file.getSection("a"),
                          file.getOption("y", value, comment)}),
              testing::ElementsAre(false, false, true, false));
  EXPECT_STREQ(value, "untouched");
  EXPECT_STREQ(comment, "untouched");
  EXPECT_TRUE(file.getOption("X", value, comment));
  EXPECT_STREQ(value, "1");
  EXPECT_STREQ(comment, "c");
  EXPECT_THAT((std::array{cursor.setToFirst(), cursor.getValue(value), file.getSection("b"),
                          file.getOption("x", value)}),
              testing::ElementsAre(true, true, false, false));
}

// Without an index this would run for minutes, beyond the time limit of the test.
TEST(IniFile, FindsEveryNameOfLongLists) {
  constexpr int kCount = 100'000;
  std::string options = "[first]\n", sections;
  for (int i = 0; i < kCount; ++i) {
    options += "Name" + std::to_string(i) + "=" + std::to_string(i) + "\n";
    sections += "[S" + std::to_string(i) + "]\nx=1\n";
  }
  VelClIniFile file("unused");
  loadText(file, options + options.substr(8));
  loadText(file, sections, false);
  loadText(file, sections, false);
  for (int i = 0; i < kCount; ++i) ASSERT_TRUE(file.getSection(("s" + std::to_string(i)).c_str()));
  ASSERT_TRUE(file.getSection("First"));
  for (int i = 0; i < kCount; ++i) {
    const std::string name = "nAME" + std::to_string(i);
    int value = -1;
    ASSERT_TRUE(file.getOption(name.c_str(), value));
    ASSERT_EQ(value, i);
    ASSERT_FALSE(file.getOption((name + "@").c_str(), value));
  }
  EXPECT_TRUE(file.deleteSection("s7"));
  EXPECT_FALSE(file.getSection("S7"));
  EXPECT_TRUE(file.getSection("S8"));
}

}  // namespace
