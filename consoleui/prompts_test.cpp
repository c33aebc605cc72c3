// Whole dialogues with redirected input: prompt_child asks, and its bytes are compared. A terminal is
// platform/posix/prompts_test.cpp's matter.
#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "platform/test/child_process.h"
#include "platform/test/session.h"

namespace {

using namespace std::string_literals;

TEST(Prompts, FollowTheSession) {
  vel::test::expectSession(VEL_TEST_DATA "test/prompts.session");
}

TEST(Prompts, CutLinesAndStartTheNextPromptClean) {
  const std::string eighty(80, 'x');
  const std::pair<std::string, std::string> rows[] = {{eighty + "\n", eighty},
                                                      {eighty + "\r\n", eighty},
                                                      {eighty + "y\n", eighty},
                                                      {eighty.substr(1) + "\r\n", eighty.substr(1)},
                                                      {std::string(100000, 'x') + "\n", eighty},
                                                      {"\r\n", "Bob"},
                                                      {"a\rb\n", "a\rb"},
                                                      {"a\0b\r\0\n"s, "ab"},
                                                      {"\0\n"s, "Bob"}};
  const std::string question = std::string(74, '-') + "\n Name:\n (default: Bob): ";
  for (const auto& [line, answer] : rows) {
    const auto result =
        vel::test::runChild("prompt_child", {"string", "Name", "Bob", "string", "Name", "Bob"},
                            {.environment = {{"LC_ALL", "C"}}, .input = line + "next\n"});
    EXPECT_EQ(result.output, question + "[" + answer + "]\n" + question + "[next]\nend\n") << line;
  }
}

}  // namespace
