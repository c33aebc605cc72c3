// What the parser makes of lines, and what questions answer.
#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "inifile/test/ini_fixture.h"
#include "platform/test/scratch_directory.h"
#include "platform/test/table.h"
#include "platform/test/variable.h"
#include "vel_include/vel.h"

using namespace std::string_literals;
using namespace std::string_view_literals;
using vel::test::loadText;
using vel::test::shown;

namespace {

std::string parsed(std::string_view text, bool keepDuplicates = true) {
  VelClIniFile file("unused");
  EXPECT_TRUE(loadText(file, text, keepDuplicates));
  return shown(file);
}

TEST(IniParser, ReadsHeadersAndOptions) {
  struct Row {
    std::string_view text;
    const char* model;
  };
  const Row rows[] = {
      {"", ""},
      {"x=1\n  y\n[broken\n", ""},
      {" [Main]\n[Main]x=1\nx=1", "[Main]x=1|"},
      {"[ Main ]\n[]\n[a]b]", "[ Main ][][a]"},
      {"[A]\nx=1\n[a]\ny=2", "[A]x=1|[a]y=2|"},
      {"[A]\nmy key\t= 1\n=2\n;c\n  ; c\n\n\"q;=3", "[A]mykey=1|=2|\"q;=3|"},
      {"[A]\nx=1\r\ny=2 ;c \r\n", "[A]x=1|y=2;c <0d>|"},
      {"[A]\nx=1\0y=2\ny\0=2\nz=3\0"sv, "[A]x=1|z=3|"},
  };
  for (const Row& row : rows) EXPECT_EQ(parsed(row.text), row.model) << row.text;
  EXPECT_EQ(parsed("[A]\nx=1\n[B]\n[a]\ny=2", false), "[A]x=1|y=2|[B]");
  const std::string name(80, 'n');
  EXPECT_EQ(parsed("[" + name + "A]\n[" + name + "B]\nx=1", false), "[" + name + "]x=1|");
}

TEST(IniParser, ReadsValues) {
  VelClEnvironmentVariable set("VEL_TEST_INI", "a;b \"c ");
  VelClEnvironmentVariable unset("VEL_TEST_NONE", nullptr);
  const std::string longName(VelClEnvironmentVariableABase::kMaxNameLength + 1, 'N');
  const vel::test::Variable longVariable(longName.c_str(), "long");
  EXPECT_EQ(parsed("[A]\nx=$(" + longName + ")"), "[A]x=long|");
  const auto expect = [](const std::string& text, const std::string& value) {
    EXPECT_EQ(parsed("[A]\nx=" + text), "[A]x=" + value + "|") << text;
  };
  for (const auto& row : vel::test::readTable(VEL_TEST_DATA "test/values.tsv"))
    expect(vel::test::unescaped(row[0]), vel::test::unescaped(row.at(1)));
  expect(R"("\x41g\x4142\101\7778")",
         "AgBA\xFF"
         "8");
  expect(R"("\xffffffffff00z")", "\xFFz");
  expect("\xC3\xA0 \xC2\x85", "\xC3\xA0 \xC2\x85");
}

TEST(IniParser, JoinsContinuationLines) {
  struct Row {
    const char* text;
    const char* model;
  };
  const Row rows[] = {
      {"list = a\n  b", "list=ab|"},   {"x=a ;c\n b", "x=ab|"},
      {"x=a\n b ;c", "x=ab;c|"},       {"x=\"a \"\n\n; c\n \" b\"", "x=a  b|"},
      {"x=a\nno option\n b", "x=ab|"}, {"x=a\n[broken\n b", "x=ab|"},
      {"x=\"a\\8\"\n b", "x=ab|"},     {"x=a\ny=1\n\tb", "x=a|y=1b|"},
  };
  for (const Row& row : rows) EXPECT_EQ(parsed("[A]\n"s + row.text), "[A]"s + row.model) << row.text;
  EXPECT_EQ(parsed("[A]\nx=a\n[B]\n b"), "[A]x=a|[B]");
}

struct Report {
  std::vector<std::uint32_t> errors;
  std::vector<unsigned int> lines;
  std::size_t most = 100;
};

bool keep(const _VelStError& error, unsigned int line, void* data) {
  auto& report = *static_cast<Report*>(data);
  EXPECT_EQ(error.errorClass, VelEnErrorClass::USER_DATA_ERROR);
  report.errors.push_back(error.errorId);
  report.lines.push_back(line);
  return report.errors.size() < report.most;
}

TEST(IniParser, AsksTheHandlerAboutErrors) {
  const std::string text = "junk\n[A]\nx=1\n[B\njunk\n y\n z\n[C]\n w\n";
  const std::vector<std::uint32_t> errors = {INIFILE_INVAL_SECTION, INIFILE_INVAL_OPTION,
                                             INIFILE_INVAL_WHITESPACE, INIFILE_INVAL_WHITESPACE,
                                             INIFILE_INVAL_WHITESPACE};
  VelClIniFile file("unused");
  Report report;
  file.setErrorHandler(keep, &report);
  EXPECT_TRUE(loadText(file, text, true, false));
  EXPECT_EQ(report.errors, errors);
  EXPECT_EQ(report.lines, (std::vector<unsigned int>{4, 5, 6, 7, 9}));
  EXPECT_EQ(file.getLineCount(), 10U);
  // Lines go on, and the model is added to.
  report = {};
  report.most = 2;
  EXPECT_FALSE(loadText(file, text, true, true));
  EXPECT_EQ(report.lines, (std::vector<unsigned int>{14, 15}));
  EXPECT_EQ(shown(file), "[A]x=1|[C][A]x=1|");
  EXPECT_TRUE(file.getSection("c"));
  EXPECT_FALSE(file.getSection("b"));
  // It ends the reading of a file at any error, and may delete what is being read.
  const vel::test::ScratchDirectory directory;
  VelClIniFile stopped(directory.write("a.INI", text).c_str());
  stopped.setErrorHandler(keep, &report);
  for (std::size_t most = 1; most <= errors.size(); ++most) {
    report = {{}, {}, most};
    EXPECT_FALSE(stopped.load(false));
    EXPECT_EQ(report.lines.size(), most);
  }
  VelClIniFile shrinking("unused");
  const auto drop = [](const _VelStError&, unsigned int, void* data) {
    return static_cast<VelClIniFile*>(data)->deleteOption("x");
  };
  shrinking.setErrorHandler(drop, &shrinking);
  EXPECT_FALSE(loadText(shrinking, "[A]\nx=1\njunk\n y\n"));
  EXPECT_EQ(shown(shrinking), "[A]");
}

TEST(IniParser, TakesLinesAsGetlineDoes) {
  const std::string longest(1021, 'v');
  struct Row {
    std::string text;
    unsigned int lines;
    std::string model;
  };
  const Row rows[] = {
      {"", 1, ""},
      {"[A]\nb=1", 2, "[A]b=1|"},
      {"[A]\nb=1\n", 3, "[A]b=1|"},
      {"[A]\nx=" + longest + "\ny=2", 3, "[A]x=" + longest + "|y=2|"},
      {"[A]\nx=" + longest, 2, "[A]x=" + longest + "|"},
      {"[A]\nx=" + longest + "w\ny=2", 2, "[A]x=" + longest + "|"},
      {"[A]\nx=" + std::string(2000, 'v') + "\ny=2", 2, "[A]x=" + longest + "|"},
  };
  for (const Row& row : rows) {
    VelClIniFile file("unused");
    EXPECT_TRUE(loadText(file, row.text));
    EXPECT_EQ(file.getLineCount(), row.lines) << row.text;
    EXPECT_EQ(shown(file), row.model);
  }
  VelClIniFile file("unused");
  EXPECT_TRUE(file.loadFromBuffer("[A]|x=1|y=2\n ;c", 15, '|', true, true));
  EXPECT_EQ(shown(file), "[A]x=1|y=2;c|");
}

TEST(IniParser, CutsValueAndThenCommentToTheRoom) {
  // Name, value and their terminators take 1,024 characters, a comment one terminator more.
  const std::string half(600, 'v');
  const std::string comment(600, 'c');
  EXPECT_EQ(parsed("[A]\nx=" + half + "\n " + half + "\n w ;c"), "[A]x=" + std::string(1021, 'v') + "|");
  EXPECT_EQ(parsed("[A]\nx=" + half + "\n ;c\n \"\" ;" + comment),
            "[A]x=" + half + ";" + std::string(420, 'c') + "|");
  VelClEnvironmentVariable big("VEL_TEST_INI", std::string(5000, 'b').c_str());
  EXPECT_EQ(parsed("[A]\nxy=a$(VEL_TEST_INI)c;d"), "[A]xy=a" + std::string(1019, 'b') + "|");
}

TEST(IniFile, LoadsTextOfEverySystem) {
  const vel::test::ScratchDirectory directory;
  const std::string longest(1023 - 2, 'v');
  const std::string lines = "[A]\r\nx=1 ;c\r\n y\r\nl=" + longest + "\r\nz=\r3\r\n";
  const std::string path = directory.write("a.INI", lines);
  VelClIniFile file(path.substr(0, path.size() - 4).c_str());
  EXPECT_TRUE(file.load(true));
  EXPECT_TRUE(file.load(false));
  EXPECT_EQ(file.getLineCount(), 6U);
  const std::string rest = "|l=" + longest + "|z=3|";
  EXPECT_EQ(shown(file), "[A]x=1y" + rest + "[A]x=1;c" + rest);
  // More than one buffer, and lines across its end.
  std::string many = "[A]\r\n";
  std::string model = "[A]";
  for (int i = 0; i < 20'000; ++i) {
    many += "name" + std::to_string(i) + "=" + std::to_string(i) + "\r\n";
    model += "name" + std::to_string(i) + "=" + std::to_string(i) + "|";
  }
  VelClIniFile large(directory.write("b.ini", many).c_str());
  EXPECT_TRUE(large.load(false));
  EXPECT_EQ(shown(large), model);
  // A file that cannot be opened changes nothing but the count of lines.
  std::filesystem::create_directory(directory.path("d.ini"));
  for (const char* const entry : {"none.ini", "d.ini"}) {
    const std::string name = directory.path(entry);
    VelClIniFile missing(name.c_str());
    EXPECT_TRUE(loadText(missing, "[A]\n"));
    EXPECT_TRUE(missing.getSection("A"));
    EXPECT_FALSE(missing.load(true));
    EXPECT_EQ(missing.getLineCount(), 0U);
    EXPECT_EQ(shown(missing), "[A]");
  }
}

TEST(IniFile, ConvertsNumbersAlikeOnEverySystem) {
  struct Row {
    const char* text;
    std::int32_t number;
    std::uint32_t unsignedNumber;
  };
  constexpr std::int32_t kMost = 2147483647;
  const Row rows[] = {
      {"12abc", 12, 12},
      {"\" \t+7\"", 7, 7},
      {"-1", -1, 4294967295},
      {"- 1", 0, 0},
      {"x", 0, 0},
      {"", 0, 0},
      {"0x10", 0, 0},
      {"99999999999", kMost, 4294967295},
      {"-99999999999", -kMost - 1, 4294967295},
      {"-4294967295", -kMost - 1, 1},
      {"4294967295", kMost, 4294967295},
  };
  for (const Row& row : rows) {
    VelClIniFile file("unused");
    loadText(file, "[A]\nx="s + row.text + " ;c");
    EXPECT_TRUE(file.getSection("a"));
    int i = 0;
    long l = 0;
    unsigned int u = 0;
    unsigned long ul = 0;
    const char* text = nullptr;
    char c = 0;
    VelClIniFileOptionCursor cursor(file, *file.getExistingSection("a")), nowhere(cursor);
    EXPECT_TRUE(cursor.setToFirst());
    const auto ask = [&](auto& value) {
      auto other = value, third = value;
      const char* comment = nullptr;
      EXPECT_TRUE(file.getOption("X", value) && file.getOption("X", other, comment));
      EXPECT_TRUE(cursor.getValue(third) && !nowhere.getValue(other));
      EXPECT_TRUE(value == other && value == third);
      EXPECT_STREQ(comment, "c");
    };
    ask(i), ask(l), ask(u), ask(ul), ask(text), ask(c);
    EXPECT_EQ(i, row.number) << row.text;
    EXPECT_EQ(l, row.number) << row.text;
    EXPECT_EQ(u, row.unsignedNumber) << row.text;
    EXPECT_EQ(ul, row.unsignedNumber) << row.text;
  }
}

TEST(IniFile, LooksForTruthWithinTheTokens) {
  VelClIniFile file("unused");
  for (const char* value : {"on", "Yes", "1", "ok", "true", "", "n", "t", "E", "e|y", "\"|\""}) {
    loadText(file, "["s + value + "]\nx=" + value);
    bool isTrue = false;
    ASSERT_TRUE(file.getSection(value) && file.getOptionBool("x", isTrue));
    EXPECT_TRUE(isTrue) << value;
  }
  for (const char* value : {"off", "2", "0", "no", "false", "ONE", " o k"}) {
    loadText(file, "["s + value + "]\nx=" + value);
    bool isTrue = true;
    const char* comment = nullptr;
    ASSERT_TRUE(file.getSection(value) && file.getOption("x", isTrue, comment));
    EXPECT_FALSE(isTrue) << value;
  }
}

TEST(IniFile, ReadsCharactersAndNeverPassesTheEnd) {
  struct Row {
    const char* text;
    char character;
  };
  const Row rows[] = {{"'A'", 'A'},    {"'\\n'", '\n'}, {"xyz", 'x'},        {"", '\0'},
                      {"\"'\"", '\0'}, {"\"'b\"", 'b'}, {"\"'\\\\\"", '\0'}, {"\"'\\\\t'\"", '\t'}};
  for (const Row& row : rows) {
    VelClIniFile file("unused");
    loadText(file, "[A]\nx="s + row.text);
    file.getSection("A");
    char c = '?';
    EXPECT_TRUE(file.getOption("x", c));
    EXPECT_EQ(c, row.character) << row.text;
  }
  struct Cursor {
    char (*read)(const char*&);
    const char* text;
    char character;
    std::size_t consumed;
  };
  const Cursor cursors[] = {
      {velIniFileGetEscCharacter, "", '\0', 0},      {velIniFileGetEscCharacter, "x4Gz", '\4', 2},
      {velIniFileGetEscCharacter, "8", '\0', 0},     {velIniFileGetEscCharacter, "0123x", 'S', 4},
      {velIniFileGetEscCharacter, "n", '\n', 1},     {velIniFileGetQuotedCharacter, "'", '\0', 1},
      {velIniFileGetQuotedCharacter, "'a", 'a', 2},  {velIniFileGetQuotedCharacter, "'\\8'", '\0', 3},
      {velIniFileGetQuotedCharacter, "'\\", '\0', 2}};
  for (const Cursor& row : cursors) {
    const char* at = row.text;
    EXPECT_EQ(row.read(at), row.character) << row.text;
    EXPECT_EQ(at, row.text + row.consumed) << row.text;
  }
}

TEST(IniFile, AnswersOnlyFromTheCurrentSection) {
  VelClIniFile file("unused");
  const char* value = "untouched";
  const char* comment = value;
  loadText(file, "[A]\nx=1;c\nX=2\n[a]\ny=3\n");
  EXPECT_FALSE(file.getOption("x", value, comment));
  EXPECT_TRUE(file.getSection("a"));
  EXPECT_FALSE(file.getOption("y", value, comment));
  EXPECT_STREQ(value, comment);
  EXPECT_TRUE(file.getOption("X", value, comment));
  EXPECT_STREQ(value, "1");
  EXPECT_STREQ(comment, "c");
  EXPECT_FALSE(file.getSection("b"));
  EXPECT_FALSE(file.getOption("x", value));
}

/// Each name in the case of the file, in the other case, and one that is absent.
void askForAll(const VelClIniFile& file, int count) {
  for (int i = 0; i < count; ++i) {
    const std::string number = std::to_string(i);
    int value = -1;
    ASSERT_TRUE(file.getOption(("Name" + number).c_str(), value));
    ASSERT_EQ(value, i);
    ASSERT_TRUE(file.getOption(("nAME" + number).c_str(), value));
    ASSERT_FALSE(file.getOption(("Name" + number + "@").c_str(), value));
  }
}

// Searching the lists instead of an index would take minutes, and run into the time limit of all tests.
TEST(IniFile, AnswersForEveryNameOfLongLists) {
  constexpr int kCount = 100'000;
  std::string options = "[first]\n";
  std::string sections;
  for (int i = 0; i < kCount; ++i) options += "Name" + std::to_string(i) + "=" + std::to_string(i) + "\n";
  options += options.substr(8) + "name5=9\n";
  for (int i = 0; i < kCount; ++i) sections += "[S" + std::to_string(i) + "]\nx=1\n";
  VelClIniFile file("unused");
  loadText(file, options);
  loadText(file, sections, false);
  loadText(file, sections, false);
  ASSERT_TRUE(file.getSection("First"));
  askForAll(file, kCount);
  for (int i = 0; i < kCount; ++i) ASSERT_TRUE(file.getSection(("s" + std::to_string(i)).c_str()));
  EXPECT_TRUE(file.deleteSection("s7") && !file.getSection("S7") && file.getSection("S8"));
}

/// Bytes that mean something to the parser, in any order: nothing but a model may come of them.
TEST(IniParser, SurvivesAnyBytes) {
  constexpr std::string_view kPieces[] = {"[",  "]",    "\n",   "\n",      "\r\n",    " ",   "=", ";",
                                          "\"", "'",    "\\",   "\\x",     "\\8",     "$(",  ")", "a",
                                          "0",  "\0"sv, "\xFF", "$(PATH)", "[A]\nx=", "\n y"};
  std::mt19937 numbers(4711);
  for (int round = 0; round < 3000; ++round) {
    std::string text = "[A]\n";
    for (auto count = numbers() % 400; count > 0; --count) text += kPieces[numbers() % std::size(kPieces)];
    // Without a terminator behind them.
    const std::vector<char> bytes(text.begin(), text.end());
    VelClIniFile file("unused");
    EXPECT_TRUE(file.loadFromBuffer(bytes.data(), bytes.size(), '\n', round % 2 == 0, round % 3 == 0));
    VelClIniFileSectionCursor section(file);
    for (bool more = section.setToFirst(); more; more = section.setToNext()) {
      VelClIniFileOptionCursor option(section);
      for (bool next = option.setToFirst(); next; next = option.setToNext()) {
        const std::string_view name(option.getOption());
        const std::string_view value(option.getValue());
        const std::string_view comment(option.getComment());
        EXPECT_LE(name.size() + value.size() + (comment.empty() ? 2 : comment.size() + 3), 1024U);
        char c = 0;
        option.getValue(c);
      }
    }
  }
}

}  // namespace
