// Runs programs that fail an assertion, and checks their reports.

#include "platform/test/test.h"

namespace {

TEST(Assertion, IsReportedAndEndsTheProcessAbnormally) {
  for (const auto& row : vel::test::readTable(VEL_TEST_DATA "test/assertions.tsv")) {
    const auto result =
        vel::test::runChild("assertion_child", {row[0]}, {.environment = {{"VEL_NO_ASSERT_POPUP", row[1]}}});
    std::string errors = result.errors;
    const std::size_t processId = errors.rfind("PROCESS ID: ") + 12;
    errors.replace(processId, errors.find_first_not_of("-0123456789", processId) - processId, "N");
    EXPECT_TRUE(result.endedAbnormally) << row[0];
    EXPECT_THAT(errors, testing::HasSubstr(vel::test::unescaped(row.at(2))));
    EXPECT_EQ(result.output, "");
  }
}

TEST(Assertion, IsReportedInFullWhateverTheLengthOfItsTexts) {
  const auto result =
      vel::test::runChild("assertion_child", {"long"}, {.environment = {{"VEL_NO_ASSERT_POPUP", "1"}}});
  const auto run = [](char c, std::size_t count) { return std::string(count, c); };
  const std::string expected =
      "\n*** INTERNAL ERROR OCCURED ***\n*** " + run('t', 100'000) +
      " ***\n***         FUNCTION: " + run('f', 2001) + "\n*** ASSERTION FAILED: " + run('e', 30'000) +
      "\n***             LINE: 5\n***           MODULE: " + run('m', 3000) + "\n***       PROCESS ID: ";
  EXPECT_TRUE(result.errors.starts_with(expected)) << result.errors.size() << " characters";
  EXPECT_TRUE(result.errors.ends_with("\n\n\n"));
}

}  // namespace
