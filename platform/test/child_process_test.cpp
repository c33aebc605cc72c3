#include "platform/test/child_process.h"

#include <gtest/gtest.h>

namespace vel::test {

namespace {

TEST(ChildProcess, TakesArgumentsInputAndVariables) {
  const std::vector<std::string> arguments = {"7",     "a b",           "",   "\"", "back\\",
                                              "a b\\", "\\\"x\\\\\" y", "*.h"};
  std::string expected;
  for (const std::string& argument : arguments) expected += "<" + argument + ">\n";
  const ChildResult result =
      runChild("echo_child", arguments, {.environment = {{"VEL_TEST_CHILD", "x=y z"}}, .input = "in\nput"});
  EXPECT_TRUE(result.started && !result.endedAbnormally);
  EXPECT_EQ(result.exitCode, 7);
  EXPECT_EQ(result.output, expected + "in\nput");
  EXPECT_EQ(result.errors, "x=y z");
}

TEST(ChildProcess, TellsAbnormalEndsAndMissingPrograms) {
  const ChildResult aborted = runChild("echo_child", {"abort"});
  EXPECT_TRUE(aborted.started && aborted.endedAbnormally);
  EXPECT_EQ(aborted.errors.substr(0, 5), "unset");
  EXPECT_FALSE(runChild("no_such_child", {}).started);
}

}  // namespace

}  // namespace vel::test
