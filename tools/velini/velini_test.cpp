// Runs velini as scripts do.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/test/child_process.h"
#include "platform/test/scratch_directory.h"

namespace {

using testing::HasSubstr;
using vel::test::readFile;
using Arguments = std::vector<std::string>;

vel::test::ChildResult velini(const Arguments& arguments, const std::string& input = {}) {
  vel::test::ChildOptions options;
  options.environment = {{"LC_ALL", "C"}};
  options.input = input;
  options.rawOutput = true;
  return vel::test::runChild("velini", arguments, options);
}

const std::string kFile =
    "; first\r\n[Main one]\r\nname = it's \"a\tb\" ; why\r\n9x=\xC3\xA4\xE4\r\nname=2\r\n[b]\r\n[main "
    "ONE]\r\nz=1\r\n";

struct Row {
  Arguments arguments;  ///< behind -file -
  std::string output;
  int exitCode;
};

const Row kRows[] = {
    {{"-section", "MAIN one", "-get", "NAME"}, "itsa\tb\n", 0},
    {{"-section", "b", "-get", "NAME"}, "", 1},
    {{"-section", "c", "-get", "NAME"}, "", 1},
    {{"-section", "c", "-list"}, "", 1},
    {{"-sections"}, "Main one\nb\nmain ONE\n", 0},
    {{"-sections", "-format", "json"}, "[\"Main one\", \"b\"]\n", 0},
    {{"-section", "b", "-list", "-format", "json"}, "{}\n", 0},
    {{"-section", "B", "-set", "y=a=b;c"},
     kFile.substr(0, kFile.size() - 17) + "y = \"a=b;c\"\r\n[main ONE]\r\nz=1\r\n",
     0},
    {{"-section", "B", "-delsection"}, kFile.substr(0, kFile.size() - 22) + "[main ONE]\r\nz=1\r\n", 0},
    {{"-section", "B", "-set", "y z=1"}, "", 4},
    {{"-section", "B", "-delete", "y"}, "", 1},
    {{"-section", "c", "-delsection"}, "", 1},
    {{"-check"}, "", 0},
    {{"-merge", "missing"}, "", 2},
};

TEST(Velini, WorksOnStandardInput) {
  for (Row row : kRows) {
    row.arguments.insert(row.arguments.begin(), {"-file", "-"});
    const auto result = velini(row.arguments, kFile);
    EXPECT_EQ(result.output, row.output) << testing::PrintToString(row.arguments) << result.errors;
    EXPECT_EQ(result.exitCode, row.exitCode) << testing::PrintToString(row.arguments) << result.errors;
  }
}

TEST(Velini, ListsInEveryForm) {
  const std::string file = "[A b]\nx=it's \"\\\"q\\\\\\x01;\" ;c\n1=\xC3\xA4\xE4\nx=2\n[a B]\ny=1\n";
  const auto list = [&](const char* form) {
    const auto result = velini({"-file", "-", "-list", "-format", form}, file);
    EXPECT_EQ(result.exitCode, 0);
    return result.output;
  };
  // The single quotes of a value are a character literal's.
  EXPECT_EQ(list("plain"), "A b\tx\tits\"q\\\\\x01;\nA b\t1\t\xC3\xA4\xE4\nA b\tx\t2\na B\ty\t1\n");
  EXPECT_EQ(list("ini"),
            "\n[A b]\nx\t= \"its\"q\\\\\\x01;\"\t; c\n1\t= \xC3\xA4\xE4\nx\t= 2\n\n[a B]\ny\t= 1\n");
  EXPECT_EQ(list("shell"), "A_b_x='its\"q\\\x01;'\nA_b_1='\xC3\xA4\xE4'\n");
  EXPECT_EQ(list("json"), "{\n\"A b\": {\"x\": \"its\\\"q\\\\\\u0001;\", \"1\": \"\xC3\xA4\\u00e4\"}\n}\n");
  const auto quoted =
      velini({"-file", "-", "-section", "A", "-get", "9", "-format", "shell"}, "[A]\n9=\"it's\"\n");
  EXPECT_EQ(quoted.output, "_9='it'\\''s'\n");
}

TEST(Velini, EditsFiles) {
  const vel::test::ScratchDirectory directory;
  const std::string path = directory.write("a.ini", "[A]\nx=1 ; c\n");
  EXPECT_EQ(velini({"-file", path, "-section", "a", "-set", "x=2"}).exitCode, 0);
  EXPECT_EQ(velini({"-file", path, "-merge", "-"}, "[b]\ny=1\ny=2\n[A]\nx=3\n").exitCode, 0);
  EXPECT_EQ(readFile(path), "[A]\nx=3 ; c\n\n[b]\ny = 1\n");
  EXPECT_EQ(velini({"-file", path, "-section", "b", "-delete", "y"}).exitCode, 0);
  EXPECT_EQ(readFile(path), "[A]\nx=3 ; c\n\n[b]\n");
  const std::string created = directory.path("new.ini");
  EXPECT_EQ(velini({"-file", created, "-list"}).exitCode, 2);
  EXPECT_EQ(velini({"-file", created, "-section", "A", "-set", "x="}).exitCode, 0);
  EXPECT_EQ(readFile(created), "[A]\nx = \n");
  EXPECT_EQ(velini({"-file", directory.path("no/new.ini"), "-section", "A", "-set", "x=1"}).exitCode, 3);
}

TEST(Velini, ChecksSyntax) {
  const std::string file = "junk\n[A]\r\n x\nok=1\n x\njunk\n[B\n";
  auto result = velini({"-file", "-", "-check"}, file);
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(result.output,
            "standard input:3: there is nothing that white space could continue\n"
            "standard input:6: the option has no equal sign\n"
            "standard input:7: the header has no closing bracket\n");
  EXPECT_THAT(velini({"-file", "-", "-check", "-nocontinue"}, file).output, HasSubstr(":5: "));
  const std::string longest = "[A]\nx=" + std::string(1021, 'v');
  EXPECT_EQ(velini({"-file", "-", "-check"}, longest).exitCode, 0);
  EXPECT_EQ(velini({"-file", "-", "-check"}, longest + "\r\ny=1").exitCode, 0);
  for (const char* rest : {"w", "w\ny=1"}) {
    result = velini({"-file", "-", "-check"}, longest + rest);
    EXPECT_EQ(result.output, "standard input:2: the line is too long, and nothing behind it is read\n");
    EXPECT_EQ(result.exitCode, 1);
  }
}

TEST(Velini, RefusesCommandLinesThatMakeNoSense) {
  const Arguments rows[] = {{"-list"},
                            {"-file", "-"},
                            {"-file", "-", "-list", "-check"},
                            {"-file", "-", "-get", "x"},
                            {"-file", "-", "-section", "A", "-set", "x"},
                            {"-file", "-", "-list", "-format", "xml"},
                            {"-file", "-", "-list", "stray"}};
  for (const Arguments& row : rows) EXPECT_EQ(velini(row).exitCode, 201) << testing::PrintToString(row);
  EXPECT_EQ(velini({"--help"}).exitCode, 0);
}

}  // namespace
