#include "process/command_line.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "process/test/command_lines.h"

namespace {

using Texts = std::vector<std::string>;

Texts split(const std::string& line) {
  const vel::process::Arguments arguments(line.c_str());
  EXPECT_EQ(arguments.get()[arguments.count()], nullptr);
  return {arguments.get(), arguments.get() + arguments.count()};
}

TEST(CommandLine, ArgumentsAreSplitLikeTheRuntimeDoes) {
  for (const auto& [line, arguments] : vel::test::kCommandLines) {
    Texts expected = {"prog"};
    expected.insert(expected.end(), arguments.begin(), arguments.end());
    EXPECT_EQ(split(std::string("prog ") + line), expected) << line;
  }
}

TEST(CommandLine, TwoQuotesInsideQuotesAreOne) {
  // The runtimes before 2008 let the second one end the quoted part, so no child is asked.
  EXPECT_EQ(split(R"(prog "a""b c" d)"), (Texts{"prog", R"(a"b c)", "d"}));
  EXPECT_EQ(split(R"(prog """ x)"), (Texts{"prog", R"(" x)"}));
  EXPECT_EQ(split(R"(prog """" x)"), (Texts{"prog", "\"", "x"}));
}

TEST(CommandLine, ProgramNamesHaveTheirOwnRules) {
  struct Row {
    const char* line;
    Texts texts;
  };
  const Row rows[] = {
      {"", {""}},
      {" a", {"", "a"}},
      {"prog", {"prog"}},
      {R"(C:\dir\prog.EXE a)", {R"(C:\dir\prog.EXE)", "a"}},
      {R"("C:\my dir\prog.EXE" a)", {R"(C:\my dir\prog.EXE)", "a"}},
      {R"("C:\dir\" a)", {R"(C:\dir\)", "a"}},
      {R"(C:\"my dir"\prog a)", {R"(C:\my dir\prog)", "a"}},
      {"\"open to the end", {"open to the end"}},
      {"prog\ta", {"prog", "a"}},
  };
  for (const Row& row : rows) EXPECT_EQ(split(row.line), row.texts) << row.line;
}

}  // namespace
