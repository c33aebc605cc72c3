// Reads the reports of real processes that end by an assertion.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <regex>
#include <string>

#include "platform/test/child_process.h"

namespace {

TEST(Assertion, ReportsAndEndsAbnormally) {
  const struct {
    const char *kind, *noWindow, *report;
  } rows[] = {
      {"plain", "yes",
       "\n*** INTERNAL ERROR OCCURED ***\n*** ASSERTION FAILED: a == b\n***             LINE: 42\n"
       "***           MODULE: dir/file.cpp\n***       PROCESS ID: N\n\n\n"},
      {"message", "yes",
       "\n*** INTERNAL ERROR OCCURED ***\n*** broken state ***\n***         FUNCTION: run\n"
       "*** ASSERTION FAILED: p != 0\n***             LINE: 4294967295\n"
       "***           MODULE: file.cpp\n***       PROCESS ID: N\n\n\n"},
      // The function only with a message.
      {"function-only", "yes", "OCCURED ***\n*** ASSERTION FAILED: p != 0\n"},
      {"macro", "yes", "*** ASSERTION FAILED: argc == 0\n"},
      {"macro", "yes", "assertion_child.cpp\n"},
      {"plain", "no", "*** ASSERTION FAILED: a == b\n"},
      {"nested", "yes", "*** ASSERTION FAILED: second\n"},
      {"throw", "yes", ""},
  };
  for (const auto& row : rows) {
    const auto result = vel::test::runChild("assertion_child", {row.kind},
                                            {.environment = {{"VEL_NO_ASSERT_POPUP", row.noWindow}}});
    const std::regex processId("PROCESS ID: -?[0-9]+");
    EXPECT_TRUE(result.endedAbnormally) << row.kind;
    EXPECT_THAT(std::regex_replace(result.errors, processId, "PROCESS ID: N"),
                testing::HasSubstr(row.report));
    EXPECT_EQ(result.output, "");
  }
}

}  // namespace
