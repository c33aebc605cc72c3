// Whole dialogues with redirected input: prompt_child asks, and its bytes are compared. A terminal is
// platform/posix/console_test.cpp's matter.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/test/child_process.h"
#include "vel_include/vel_consoleui.h"

namespace {

using namespace std::string_literals;

const std::string kSeparator = "--------------------------------------------------------------------------\n";
const std::string kTwo = kSeparator + " N (min.: 1, max.: 9):\n (default: 2): ";
const std::string kAll = kSeparator + " N (min.: -2147483648, max.: 2147483647):\n (default: 0): ";
const std::string kFar = kSeparator + " N (min.: 1, max.: 9):\n (default: 70): ";
const std::string kName = kSeparator + " Name:\n ";
const std::string kBob = kSeparator + " Name:\n (default: Bob): ";
const std::string kSure = kSeparator + " Sure (Y/N):\n (default: Y): ";
const std::string kSureNot = kSeparator + " Sure (Y/N):\n (default: N): ";

std::string fault(const std::string& text) {
  return "\n" + kSeparator +
         "PROMPT_CHILD: An error occurred:\n              Invalid value specified: " + text + "\n";
}

struct Row {
  std::vector<std::string> script;
  std::string input;
  std::string output;
};

void expectDialogues(const std::vector<Row>& rows) {
  for (const Row& row : rows) {
    const auto result = vel::test::runChild("prompt_child", row.script,
                                            {.environment = {{"LC_ALL", "C"}}, .input = row.input});
    EXPECT_EQ(result.exitCode, 0) << row.script.front() << " <- " << row.input;
    EXPECT_EQ(result.output, row.output + "end\n") << row.script.front() << " <- " << row.input;
    EXPECT_EQ(result.errors, "");
  }
}

TEST(Prompts, AskForTexts) {
  const std::string eighty(80, 'x');
  expectDialogues({
      {{"prompt", "Colour", "red, green", "red"},
       "green\n",
       kSeparator + " Colour (red, green):\n (default: red): [green]\n"},
      {{"prompt", "Colour", "-", "-"}, "green\n", kSeparator + " Colour:\n [green]\n"},
      {{"string", "#17", "-"}, "x\n", kSeparator + " Usage:\n [x]\n"},
      {{"string", "Name", "Bob"}, "\n", kBob + "[Bob]\n"},
      {{"string", "Name", "Bob"}, "  \n", kBob + "[  ]\n"},
      {{"string", "Name", eighty + "cut"},
       "\n",
       kSeparator + " Name:\n (default: " + eighty + "cut): [" + eighty + "]\n"},
      {{"string", "Name", "-", "again"},
       "Ann\n\n",
       kName + "[Ann]\n" + kSeparator + " Ann:\n (default: Ann): [Ann]\n"},
  });
}

TEST(Prompts, CutLinesAndStartTheNextPromptClean) {
  const std::vector<std::string> twice = {"string", "Name", "Bob", "string", "Name", "Bob"};
  const std::string eighty(80, 'x');
  struct Line {
    std::string input;
    std::string answer;
  };
  const Line lines[] = {
      {eighty + "\n", eighty},
      {eighty + "\r\n", eighty},
      {eighty + "y\n", eighty},
      {std::string(79, 'x') + "\r\n", std::string(79, 'x')},
      {std::string(100000, 'x') + "\n", eighty},
      {"\r\n", "Bob"},
      {"a\rb\n", "a\rb"},
      {"a\0b\r\0\n"s, "ab"},
      {"\0\n"s, "Bob"},
  };
  for (const Line& line : lines) {
    std::string output = kBob + "[";
    output.append(line.answer).append("]\n").append(kBob).append("[next]\n");
    expectDialogues({{twice, line.input + "next\n", output}});
  }
}

TEST(Prompts, AskForNumbersUntilOneFits) {
  const std::string outside = fault("Please enter a value within limits") + kTwo;
  const std::string noNumber = fault("Please enter a numeric value") + kTwo;
  const std::vector<std::string> oneToNine = {"number", "N", "1", "9", "2"};
  expectDialogues({
      {oneToNine, "\n", kTwo + "[2]\n"},
      {oneToNine, "1\n", kTwo + "[1]\n"},
      {oneToNine, "9 apples\n", kTwo + "[9]\n"},
      {oneToNine, "0\n10\n-3\n3\n", kTwo + outside + outside + outside + "[3]\n"},
      {oneToNine, "abc\n+5\n-\n 5\n5\n", kTwo + noNumber + noNumber + noNumber + noNumber + "[5]\n"},
      {{"number", "N", "1", "9", "70"},
       "\n4\n",
       kFar + fault("Please enter a value within limits") + kFar + "[4]\n"},
      {{"number", "N", "-2147483648", "2147483647", "0"}, "99999999999\n", kAll + "[2147483647]\n"},
      {{"number", "N", "-2147483648", "2147483647", "0"}, "-2147483648\n", kAll + "[-2147483648]\n"},
  });
}

TEST(Prompts, AskForYesOrNo) {
  const std::string pleaseUse = fault("Please use: Y/N") + kSure;
  expectDialogues({
      {{"yesNo", "Sure", "y"}, "\n", kSure + "[true]\n"},
      {{"yesNo", "Sure", "n"}, "\n", kSureNot + "[false]\n"},
      {{"yesNo", "Sure", "n"}, "yes\n", kSureNot + "[true]\n"},
      {{"yesNo", "Sure", "y"}, "Never\n", kSure + "[false]\n"},
      {{"yesNo", "Sure", "y"}, "x\n y\ny\n", kSure + pleaseUse + pleaseUse + "[true]\n"},
  });
}

TEST(Prompts, TakeTheDefaultAtTheEndOfInput) {
  expectDialogues({
      {{"string", "Name", "-"}, "", kName + "[]\n"},
      {{"string", "Name", "Bob", "string", "Name", "Bob"}, "Ann", kBob + "[Ann]\n" + kBob + "[Bob]\n"},
      {{"yesNo", "Sure", "y", "yesNo", "Sure", "n"}, "", kSure + "[true]\n" + kSureNot + "[false]\n"},
      // Not even within the limits.
      {{"number", "N", "1", "9", "70"}, "", kFar + "[70]\n"},
      {{"number", "N", "1", "9", "70"},
       "0",
       kFar + fault("Please enter a value within limits") + kFar + "[70]\n"},
  });
}

TEST(Prompts, WaitForALineOrAKey) {
  const std::string enter = " === Press <ENTER> to continue ===\n";
  expectDialogues({
      {{"enter", "string", "Name", "Bob"}, "any\nAnn\n", enter + kBob + "[Ann]\n"},
      {{"string", "Name", "-", "enter", "again"},
       "Ann\nany\n",
       kName + "[Ann]\n" + enter + kSeparator + " Ann:\n (default: Ann): [Ann]\n"},
      {{"key", "enter"}, "", " === Press any key to continue ===\n" + enter},
  });
}

}  // namespace
