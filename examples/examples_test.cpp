// The examples print what they promise.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/test/child_process.h"

namespace {

vel::test::ChildOptions english() {
  vel::test::ChildOptions options;
  options.environment = {{"LC_ALL", "C"}};
  return options;
}

TEST(Examples, PlainFunctionsWorkFromC) {
  const auto result = vel::test::runChild("example_plain_functions", {}, english());
  EXPECT_EQ(result.output,
            "level    VELLibR5-24\n"
            "message  qamc5032 weighs 8 bytes\n"
            "error 5  ERROR_ACCESS_DENIED\n"
            "id       67\n"
            "matches  1\n");
  EXPECT_EQ(result.exitCode, 0);
}

TEST(Examples, GreetChecksItsCommandLine) {
  const auto greeting = vel::test::runChild("example_greet", {"-name", "Ada", "-times", "2"}, english());
  EXPECT_EQ(greeting.output, "\nEXAMPLE_GREET - Greeter   says hello\nHello, Ada!\nHello, Ada!\n");
  EXPECT_EQ(greeting.exitCode, 0);
  const auto refused = vel::test::runChild("example_greet", {"-times", "many"}, english());
  EXPECT_EQ(refused.exitCode, 204);
  EXPECT_THAT(refused.errors, testing::HasSubstr("Non-numeric value"));
}

}  // namespace
