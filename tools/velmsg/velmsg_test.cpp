// Runs velmsg as its users do and reads what it prints.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "platform/test/child_process.h"

namespace {

using testing::HasSubstr;
using testing::StartsWith;
using Arguments = std::vector<std::string>;

vel::test::ChildResult velmsg(const Arguments& arguments) {
  vel::test::ChildOptions options;
  options.environment = {{"LC_ALL", "C"}};
  options.rawOutput = true;
  return vel::test::runChild("velmsg", arguments, options);
}

std::string column(const std::string& row, int index) {
  std::istringstream fields(row);
  std::string field;
  for (; index >= 0; --index) std::getline(fields, field, '\t');
  return field;
}

/// What -list must print, made from the table that the catalog is made from: it uses the same escapes.
std::string expectedListing(bool english, bool german) {
  std::ifstream table(VEL_MESSAGE_TABLE, std::ios::binary);
  std::string listing;
  std::string row;
  std::getline(table, row);
  while (std::getline(table, row)) {
    const std::string id = column(row, 0);
    if (id == "0") continue;
    if (german) listing += id + "\t1031\t" + column(row, 2) + "\n";
    if (english) listing += id + "\t1033\t" + column(row, 1) + "\n";
  }
  return listing;
}

TEST(Velmsg, ListsTheLibraryCatalogInTheSameBytesOnEverySystem) {
  const std::string all = expectedListing(true, true);
  ASSERT_THAT(all, HasSubstr("\n220\t1033\t[VEL-LIBRARY]\n"));
  EXPECT_EQ(velmsg({"-cat", "qammsg50.DLL", "-list"}).output, all);
  EXPECT_EQ(velmsg({"-cat", "qammsg50.txt", "-list", "-lang", "1031"}).output, expectedListing(false, true));
  EXPECT_EQ(velmsg({"-cat", "qammsg50", "-langs"}).output, "1031\t220\n1033\t220\n");
  EXPECT_EQ(velmsg({"-cat", "qammsg50", "-list", "-lang", "1036"}).exitCode, 1);
}

TEST(Velmsg, AnswersOnStandardOutputOnly) {
  struct Row {
    Arguments arguments;
    const char* output;
    int exitCode;
  };
  const Row rows[] = {
      {{"-cat", "qammsg50.DLL", "-id", "23"}, "Unknown command line argument\n", 0},
      {{"-builtin", "-id", "2", "-var", "a", "b c", "-5"},
       "Percent:% Arg1:a Arg2:b c Arg3:-5 Arg4:??? Arg5:??? Arg6:??? Arg7:??? Arg8:??? Arg9:??? Arg10:???\n",
       0},
      {{"-builtin", "-id", "0"}, "", 1},
      {{"-builtin", "-id", "221"}, "", 1},
      {{"-cat", "qammsg50.DLL", "-id", "4000"}, "", 1},
      {{"-builtin", "-list", "-lang", "1033"}, "", 1},
      {{"-cat", "velmsg_first", "-id", "3221291007"}, "the last one\n", 0},
      {{"-builtin", "-id", "4294967296"}, "", 204},
      {{"-error", "1000401"}, "identifier\tFILE_COULD_NOT_COPY\n", 0},
      {{"-error", "5"}, "severity\tNORMAL\naction\tUSER\nplatform\tERROR_ACCESS_DENIED\n", 0},
      {{"-error", "-8"}, "platform\tLZERROR_UNKNOWNALG\n", 0},
      {{"-error", "0xFFFFFFF8"}, "platform\tLZERROR_UNKNOWNALG\n", 0},
      {{"-error", "123456789"}, "", 1},
      {{"-error", "4294967296"}, "", 204},
      {{"-error", "12x"}, "", 204},
      {{"-builtin", "-diff", "qammsg50.DLL"}, "", 0},
      {{"-cat", "missing", "-list"}, "", 2},
      {{"-builtin", "-diff", "missing"}, "", 2},
  };
  for (const Row& row : rows) {
    const auto result = velmsg(row.arguments);
    EXPECT_EQ(result.output, row.output) << testing::PrintToString(row.arguments);
    EXPECT_EQ(result.exitCode, row.exitCode) << testing::PrintToString(row.arguments);
    EXPECT_THAT(result.errors, HasSubstr("VELMSG - Message catalog inspector"));
  }
}

TEST(Velmsg, ShowsEveryKindOfDifference) {
  const auto result = velmsg({"-cat", "velmsg_first", "-diff", "velmsg_second"});
  EXPECT_EQ(result.output, "<\t2\n>\t3\n!\t4\t%1 %2\t%1\n!\t5\t%1!8s!\t%1\n<\t3221291007\n");
  EXPECT_EQ(result.exitCode, 1);
}

TEST(Velmsg, RefusesCommandLinesThatMakeNoSense) {
  struct Row {
    Arguments arguments;
    const char* message;
  };
  const Row rows[] = {
      {{}, "Exactly one of -list"},
      {{"-builtin", "-list", "-langs"}, "Exactly one of -list"},
      {{"-list"}, "A message catalog is needed"},
      {{"-cat", "a", "-builtin", "-list"}, "Only one of -cat and -builtin"},
      {{"-builtin", "-id", "1", "-lang", "1031"}, "-lang goes with -list only"},
      {{"-builtin", "-list", "stray"}, "This argument belongs to no switch: stray"},
      {{"-builtin", "-id", "2", "-var", "1", "2", "3", "4", "5", "6", "7", "8", "9", "10", "11"},
       "This argument belongs to no switch: 11"},
      {{"-builtin", "-list", "-unknown"}, "Unknown command line argument: -unknown"},
  };
  for (const Row& row : rows) {
    const auto result = velmsg(row.arguments);
    EXPECT_EQ(result.exitCode, 201) << row.message;
    EXPECT_THAT(result.errors, HasSubstr(row.message));
  }
}

TEST(Velmsg, AnswersHelpAndVersionBeforeEverythingElse) {
  const auto help = velmsg({"-unknown", "--help"});
  EXPECT_EQ(help.exitCode, 0);
  EXPECT_EQ(help.errors, "");
  EXPECT_THAT(help.output, StartsWith("velmsg - Message catalog inspector\n\nUsage: velmsg [-cat <file>]"));
  const auto version = velmsg({"--version"});
  EXPECT_EQ(version.exitCode, 0);
  EXPECT_EQ(version.output, "velmsg VELLibR5-24\n");
  EXPECT_EQ(velmsg({"-?"}).exitCode, 201);
}

}  // namespace
