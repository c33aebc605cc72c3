// Reads the reports of real processes that end by an assertion.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <regex>
#include <string>

#include "platform/test/child_process.h"

namespace {

using testing::HasSubstr;
using testing::Not;

vel::test::ChildResult assertIn(const std::string& kind, const std::string& noPopup = "yes") {
  return vel::test::runChild("assertion_child", {kind}, {.environment = {{"VEL_NO_ASSERT_POPUP", noPopup}}});
}

std::string withoutProcessId(const std::string& report) {
  return std::regex_replace(report, std::regex("PROCESS ID: -?[0-9]+"), "PROCESS ID: N");
}

TEST(Assertion, ReportsInTheFixedLayoutAndEndsAbnormally) {
  const char* const rows[][2] = {
      {"plain",
       "\n*** INTERNAL ERROR OCCURED ***\n"
       "*** ASSERTION FAILED: a == b\n"
       "***             LINE: 42\n"
       "***           MODULE: dir/file.cpp\n"
       "***       PROCESS ID: N\n\n\n"},
      {"message",
       "\n*** INTERNAL ERROR OCCURED ***\n"
       "*** broken state ***\n"
       "***         FUNCTION: run\n"
       "*** ASSERTION FAILED: p != 0\n"
       "***             LINE: 4294967295\n"
       "***           MODULE: file.cpp\n"
       "***       PROCESS ID: N\n\n\n"},
  };
  for (const auto& [kind, report] : rows) {
    const auto result = assertIn(kind);
    EXPECT_TRUE(result.endedAbnormally) << kind;
    EXPECT_EQ(withoutProcessId(result.errors).find(report), 0U) << result.errors;
    EXPECT_EQ(result.output, "");
  }
  // The function only with a message.
  EXPECT_THAT(assertIn("function-only").errors, Not(HasSubstr("FUNCTION")));
}

TEST(Assertion, MacroNamesItsExpressionAndFile) {
  const auto result = assertIn("macro");
  EXPECT_THAT(result.errors, HasSubstr("ASSERTION FAILED: argc == 0"));
  EXPECT_THAT(result.errors, HasSubstr("assertion_child.cpp"));
}

TEST(Assertion, EndsAlsoWhenTheWindowIsWantedInsideAnotherAndByAnExceptionThatNobodyCatches) {
  EXPECT_TRUE(assertIn("plain", "no").endedAbnormally);
  const auto nested = assertIn("nested");
  EXPECT_TRUE(nested.endedAbnormally && assertIn("throw").endedAbnormally);
  EXPECT_THAT(nested.errors, HasSubstr("ASSERTION FAILED: second"));
}

}  // namespace
