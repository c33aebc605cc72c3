// Reads the reports of real processes that end by an assertion.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <regex>

#include "platform/test/child_process.h"
#include "platform/test/table.h"

namespace {

TEST(Assertion, ReportsAndEndsAbnormally) {
  for (const auto& row : vel::test::readTable(VEL_TEST_DATA "test/assertions.tsv")) {
    const auto result =
        vel::test::runChild("assertion_child", {row[0]}, {.environment = {{"VEL_NO_ASSERT_POPUP", row[1]}}});
    const std::regex processId("PROCESS ID: -?[0-9]+");
    EXPECT_TRUE(result.endedAbnormally) << row[0];
    EXPECT_THAT(std::regex_replace(result.errors, processId, "PROCESS ID: N"),
                testing::HasSubstr(vel::test::unescaped(row.at(2))));
    EXPECT_EQ(result.output, "");
  }
}

}  // namespace
